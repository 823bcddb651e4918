#include "tests/support/scripted_wininet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace velandoc::testing {
ScriptedWinInet::~ScriptedWinInet() {
  EXPECT_EQ(OpenHandles(), expectedLeaks) << "handles left open";
  EXPECT_TRUE(answers.empty()) << answers.size() << " answers were never asked for";
}

std::vector<std::string> ScriptedWinInet::CallsOf(const std::string& name) const {
  std::vector<std::string> found;
  std::copy_if(calls.begin(), calls.end(), std::back_inserter(found),
               [&](const std::string& line) { return line.rfind(name + "(", 0) == 0; });
  return found;
}

int ScriptedWinInet::OpenHandles() const {
  return static_cast<int>(std::count_if(m_handles.begin(), m_handles.end(),
                                        [](const Handle& handle) { return handle.open; }));
}

bool ScriptedWinInet::Fails(const std::string& name) {
  return std::find(failing.begin(), failing.end(), name) != failing.end();
}

BOOL ScriptedWinInet::Done(BOOL success, DWORD error) {
  m_lastError = success ? kSpoiledError : error;
  return success;
}

int ScriptedWinInet::NumberOf(HINTERNET handle) const {
  return static_cast<int>(reinterpret_cast<std::intptr_t>(handle));
}

void ScriptedWinInet::ExpectOpen(HINTERNET handle, const char* operation) {
  const int number = NumberOf(handle);
  EXPECT_TRUE(number > 0 && number <= static_cast<int>(m_handles.size()) &&
              m_handles[static_cast<std::size_t>(number - 1)].open)
      << operation << " of handle " << number << ", which is not open";
}

HINTERNET ScriptedWinInet::NewHandle(HINTERNET parent) {
  m_handles.push_back({NumberOf(parent), true});
  return reinterpret_cast<HINTERNET>(static_cast<std::intptr_t>(m_handles.size()));
}

HINTERNET ScriptedWinInet::InternetOpenW(LPCWSTR agent, DWORD accessType, LPCWSTR proxy,
                                         LPCWSTR proxyBypass, DWORD flags) {
  calls.push_back(CallLine("InternetOpenW", Printable(agent), std::to_string(accessType),
                           Printable(proxy), Printable(proxyBypass), Hex(flags)));
  if (!Done(!Fails("InternetOpenW"))) return nullptr;
  return NewHandle(nullptr);
}

HINTERNET ScriptedWinInet::InternetConnectW(HINTERNET session, LPCWSTR serverName,
                                            INTERNET_PORT port, LPCWSTR userName, LPCWSTR password,
                                            DWORD service, DWORD flags, DWORD_PTR context) {
  calls.push_back(CallLine("InternetConnectW", std::to_string(NumberOf(session)),
                           Printable(serverName), std::to_string(port), Printable(userName),
                           Printable(password), std::to_string(service), Hex(flags),
                           std::to_string(context)));
  ExpectOpen(session, "InternetConnectW");
  const bool refused = Fails("InternetConnectW") || *serverName == 0;
  if (!Done(!refused, refused ? DWORD{ERROR_INVALID_PARAMETER} : 0)) return nullptr;
  return NewHandle(session);
}

HINTERNET ScriptedWinInet::HttpOpenRequestW(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName,
                                            LPCWSTR version, LPCWSTR referrer, LPCWSTR* acceptTypes,
                                            DWORD flags, DWORD_PTR context) {
  calls.push_back(CallLine("HttpOpenRequestW", std::to_string(NumberOf(connect)), Printable(verb),
                           Printable(objectName), Printable(version), Printable(referrer),
                           PrintableList(acceptTypes), Hex(flags), std::to_string(context)));
  const bool refused = Fails("HttpOpenRequestW") || connect == nullptr;
  if (!Done(!refused, refused ? DWORD{ERROR_INVALID_HANDLE} : 0)) return nullptr;
  ExpectOpen(connect, "HttpOpenRequestW");
  return NewHandle(connect);
}

BOOL ScriptedWinInet::PlaySend() {
  m_chunk = 0;
  if (answers.empty()) {
    ADD_FAILURE() << "a send that the script has no answer for";
    m_current = Answer{};
    m_current.status.clear();
    return Done(FALSE, ERROR_INTERNET_INTERNAL_ERROR);
  }
  m_current = answers.front();
  answers.pop_front();
  return Done(m_current.error == 0, m_current.error);
}

BOOL ScriptedWinInet::HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength,
                                       LPVOID optional, DWORD optionalLength) {
  EXPECT_NE(optional, nullptr);
  bodies.emplace_back(static_cast<const char*>(optional), optionalLength);
  headerBlocks.push_back(Printable(headers));
  calls.push_back(CallLine(
      "HttpSendRequestW", std::to_string(NumberOf(request)), Printable(headers),
      std::to_string(static_cast<std::int32_t>(headersLength)), std::to_string(optionalLength)));
  ExpectOpen(request, "HttpSendRequestW");
  return PlaySend();
}

BOOL ScriptedWinInet::HttpSendRequestExW(HINTERNET request, INTERNET_BUFFERSW* buffersIn,
                                         INTERNET_BUFFERSW* buffersOut, DWORD flags,
                                         DWORD_PTR context) {
  const auto describe = [](const INTERNET_BUFFERSW* buffers) -> std::string {
    if (buffers == nullptr) return "null";
    EXPECT_EQ(buffers->dwStructSize, sizeof(INTERNET_BUFFERSW));
    INTERNET_BUFFERSW expected{};
    expected.dwStructSize = sizeof expected;
    expected.lpcszHeader = buffers->lpcszHeader;
    expected.dwHeadersLength = buffers->dwHeadersLength;
    EXPECT_EQ(std::memcmp(buffers, &expected, sizeof expected), 0) << "more is set than told";
    std::string text = "{";
    text += Printable(buffers->lpcszHeader);
    text += ' ';
    text += std::to_string(buffers->dwHeadersLength);
    text += '}';
    return text;
  };
  calls.push_back(CallLine("HttpSendRequestExW", std::to_string(NumberOf(request)),
                           describe(buffersIn), describe(buffersOut), std::to_string(flags),
                           std::to_string(context)));
  ExpectOpen(request, "HttpSendRequestExW");
  return PlaySend();
}

BOOL ScriptedWinInet::InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size,
                                        DWORD* count) {
  ExpectOpen(request, "InternetWriteFile");
  calls.push_back(
      CallLine("InternetWriteFile", std::to_string(NumberOf(request)), std::to_string(size)));
  written.append(static_cast<const char*>(buffer), size);
  *count = size;
  return Done(TRUE);
}

BOOL ScriptedWinInet::HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW*, DWORD, DWORD_PTR) {
  ExpectOpen(request, "HttpEndRequestW");
  calls.push_back(CallLine("HttpEndRequestW", std::to_string(NumberOf(request))));
  return Done(TRUE);
}

BOOL ScriptedWinInet::InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) {
  ExpectOpen(request, "InternetReadFile");
  calls.push_back(
      CallLine("InternetReadFile", std::to_string(NumberOf(request)), std::to_string(size)));
  *read = 0;
  if (m_chunk == m_current.chunks.size()) {
    return m_current.readError != 0 ? Done(FALSE, m_current.readError) : Done(TRUE);
  }
  const std::string& chunk = m_current.chunks[m_chunk++];
  EXPECT_LE(chunk.size(), size) << "the script's chunk is larger than a read";
  *read = static_cast<DWORD>(std::min<std::size_t>(chunk.size(), size));
  std::memcpy(buffer, chunk.data(), *read);
  return Done(TRUE);
}

BOOL ScriptedWinInet::HttpQueryInfoW(HINTERNET request, DWORD infoLevel, LPVOID buffer, DWORD* size,
                                     DWORD* index) {
  ExpectOpen(request, "HttpQueryInfoW");
  calls.push_back(CallLine("HttpQueryInfoW", std::to_string(NumberOf(request)),
                           std::to_string(infoLevel), std::to_string(*size)));
  EXPECT_EQ(index, nullptr);
  WideString value;
  if (infoLevel == HTTP_QUERY_STATUS_CODE) {
    value = m_current.error == 0 ? m_current.status : WideString();
  } else if (m_current.headers.count(infoLevel) != 0) {
    value = m_current.headers[infoLevel];
  }
  if (value.empty()) return Done(FALSE, ERROR_HTTP_HEADER_NOT_FOUND);
  const auto needed = static_cast<DWORD>((value.size() + 1) * sizeof(OLECHAR));
  if (needed > *size) {
    *size = needed;
    return Done(FALSE, ERROR_INSUFFICIENT_BUFFER);
  }
  std::memcpy(buffer, value.c_str(), needed);
  *size = needed - static_cast<DWORD>(sizeof(OLECHAR));
  return Done(TRUE);
}

DWORD ScriptedWinInet::InternetErrorDlg(HWND parent, HINTERNET request, DWORD error, DWORD flags,
                                        LPVOID* data) {
  ExpectOpen(request, "InternetErrorDlg");
  EXPECT_EQ(data, nullptr);
  calls.push_back(CallLine("InternetErrorDlg", parent == activeWindow ? "active" : "other window",
                           std::to_string(NumberOf(request)), std::to_string(error),
                           std::to_string(flags)));
  m_lastError = kSpoiledError;
  if (dialogResults.empty()) return ERROR_SUCCESS;
  const DWORD result = dialogResults.front();
  dialogResults.pop_front();
  return result;
}

BOOL ScriptedWinInet::InternetQueryOptionW(HINTERNET handle, DWORD option, LPVOID, DWORD*) {
  ExpectOpen(handle, "InternetQueryOptionW");
  calls.push_back(CallLine("InternetQueryOptionW", std::to_string(option)));
  return Done(FALSE, ERROR_INTERNET_INVALID_OPTION);
}

BOOL ScriptedWinInet::InternetSetOptionW(HINTERNET handle, DWORD option, LPVOID, DWORD) {
  ExpectOpen(handle, "InternetSetOptionW");
  calls.push_back(CallLine("InternetSetOptionW", std::to_string(option)));
  return Done(FALSE, ERROR_INTERNET_INVALID_OPTION);
}

BOOL ScriptedWinInet::InternetCloseHandle(HINTERNET handle) {
  const int number = NumberOf(handle);
  calls.push_back(CallLine("InternetCloseHandle", std::to_string(number)));
  ExpectOpen(handle, "InternetCloseHandle");
  if (number <= 0 || number > static_cast<int>(m_handles.size())) return Done(FALSE);
  for (Handle& child : m_handles) {
    if (closesChildren && child.parent == number) {
      child.open = false;
      continue;
    }
    // A handle that its owner has lost cannot be closed before its parent any more.
    if (child.open && child.parent == number && expectedLeaks == 0) {
      ADD_FAILURE() << "handle " << number << " is closed before its child";
    }
  }
  m_handles[static_cast<std::size_t>(number - 1)].open = false;
  return Done(TRUE);
}

HWND ScriptedWinInet::GetActiveWindow() {
  calls.push_back("GetActiveWindow()");
  m_lastError = kSpoiledError;
  return activeWindow;
}

DWORD ScriptedWinInet::GetLastError() {
  calls.push_back("GetLastError()");
  return m_lastError;
}

}  // namespace velandoc::testing
