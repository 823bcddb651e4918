#include "tests/support/scripted_winhttp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "tests/support/call_line.h"

namespace velandoc::testing {

ScriptedWinHttp::~ScriptedWinHttp() {
  EXPECT_EQ(OpenRequests(), expectedLeaks) << "requests left open";
  EXPECT_TRUE(answers.empty()) << answers.size() << " answers were never asked for";
}

std::vector<std::string> ScriptedWinHttp::CallsOf(const std::string& name) const {
  std::vector<std::string> found;
  std::copy_if(calls.begin(), calls.end(), std::back_inserter(found),
               [&](const std::string& line) { return line.rfind(name + "(", 0) == 0; });
  return found;
}

int ScriptedWinHttp::OpenHandles(Kind kind) const {
  return static_cast<int>(
      std::count_if(m_handles.begin(), m_handles.end(),
                    [kind](const Handle& handle) { return handle.open && handle.kind == kind; }));
}

bool ScriptedWinHttp::Fails(const std::string& name) {
  return std::find(failing.begin(), failing.end(), name) != failing.end();
}

BOOL ScriptedWinHttp::Done(BOOL success, DWORD error) {
  m_lastError = success ? kSpoiledError : error;
  return success;
}

int ScriptedWinHttp::NumberOf(HINTERNET handle) {
  return static_cast<int>(reinterpret_cast<std::intptr_t>(handle));
}

HINTERNET ScriptedWinHttp::NewHandle(Kind kind) {
  m_handles.push_back({.kind = kind});
  return reinterpret_cast<HINTERNET>(static_cast<std::intptr_t>(m_handles.size()));
}

ScriptedWinHttp::Handle* ScriptedWinHttp::Find(HINTERNET handle, Kind kind, const char* operation) {
  const int number = NumberOf(handle);
  const bool known = number > 0 && number <= static_cast<int>(m_handles.size());
  Handle* found = known ? &m_handles[static_cast<std::size_t>(number - 1)] : nullptr;
  if (found != nullptr && found->open && found->kind == kind) return found;
  ADD_FAILURE() << operation << " of handle " << number << ", which is not open or of another kind";
  return nullptr;
}

HINTERNET ScriptedWinHttp::WinHttpOpen(LPCWSTR agent, DWORD accessType, LPCWSTR proxy,
                                       LPCWSTR proxyBypass, DWORD flags) {
  calls.push_back(CallLine("WinHttpOpen", Printable(agent), std::to_string(accessType),
                           Printable(proxy), Printable(proxyBypass), Hex(flags)));
  if (!Done(!Fails("WinHttpOpen"))) return nullptr;
  return NewHandle(Kind::kSession);
}

HINTERNET ScriptedWinHttp::WinHttpConnect(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                                          DWORD reserved) {
  calls.push_back(CallLine("WinHttpConnect", std::to_string(NumberOf(session)),
                           Printable(serverName), std::to_string(port), std::to_string(reserved)));
  Find(session, Kind::kSession, "WinHttpConnect");
  const bool refused = Fails("WinHttpConnect") || *serverName == 0;
  if (!Done(!refused, ERROR_INVALID_PARAMETER)) return nullptr;
  return NewHandle(Kind::kConnection);
}

HINTERNET ScriptedWinHttp::WinHttpOpenRequest(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName,
                                              LPCWSTR version, LPCWSTR referrer,
                                              LPCWSTR* acceptTypes, DWORD flags) {
  calls.push_back(CallLine("WinHttpOpenRequest", std::to_string(NumberOf(connect)), Printable(verb),
                           Printable(objectName), Printable(version), Printable(referrer),
                           PrintableList(acceptTypes), Hex(flags)));
  const bool refused = Fails("WinHttpOpenRequest") || connect == nullptr;
  if (!Done(!refused, ERROR_INVALID_HANDLE)) return nullptr;
  Find(connect, Kind::kConnection, "WinHttpOpenRequest");
  return NewHandle(Kind::kRequest);
}

BOOL ScriptedWinHttp::WinHttpSetOption(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) {
  DWORD value = 0;
  EXPECT_EQ(size, sizeof value);
  std::memcpy(&value, buffer, sizeof value);
  calls.push_back(CallLine("WinHttpSetOption", std::to_string(NumberOf(handle)),
                           std::to_string(option), std::to_string(value)));
  Find(handle, Kind::kRequest, "WinHttpSetOption");
  return Done(!Fails("WinHttpSetOption"), ERROR_WINHTTP_INVALID_OPTION);
}

BOOL ScriptedWinHttp::WinHttpSetCredentials(HINTERNET request, DWORD target, DWORD scheme,
                                            LPCWSTR userName, LPCWSTR password, LPVOID parameters) {
  EXPECT_EQ(parameters, nullptr);
  calls.push_back(CallLine("WinHttpSetCredentials", std::to_string(NumberOf(request)),
                           std::to_string(target), std::to_string(scheme), Printable(userName),
                           Printable(password)));
  Find(request, Kind::kRequest, "WinHttpSetCredentials");
  return Done(!Fails("WinHttpSetCredentials"), ERROR_INVALID_PARAMETER);
}

BOOL ScriptedWinHttp::WinHttpSendRequest(HINTERNET request, LPCWSTR headers, DWORD headersLength,
                                         LPVOID optional, DWORD optionalLength, DWORD totalLength,
                                         DWORD_PTR context) {
  calls.push_back(CallLine("WinHttpSendRequest", std::to_string(NumberOf(request)),
                           Printable(headers), std::to_string(headersLength),
                           optional == nullptr ? "null" : "a body", std::to_string(optionalLength),
                           std::to_string(totalLength), std::to_string(context)));
  Handle* sent = Find(request, Kind::kRequest, "WinHttpSendRequest");
  if (sent == nullptr) return Done(FALSE);
  if (answers.empty()) {
    ADD_FAILURE() << "a send that the script has no answer for";
    return Done(FALSE);
  }
  sent->answer = answers.front();
  sent->received = false;
  sent->chunk = 0;
  answers.pop_front();
  return Done(sent->answer.sendError == 0, sent->answer.sendError);
}

BOOL ScriptedWinHttp::WinHttpWriteData(HINTERNET request, LPCVOID buffer, DWORD size,
                                       DWORD* count) {
  calls.push_back(
      CallLine("WinHttpWriteData", std::to_string(NumberOf(request)), std::to_string(size)));
  *count = 0;
  Find(request, Kind::kRequest, "WinHttpWriteData");
  if (goodWrites == 0) return Done(FALSE, ERROR_WINHTTP_CONNECTION_ERROR);
  if (goodWrites > 0) --goodWrites;
  written.append(static_cast<const char*>(buffer), size);
  *count = size;
  return Done(TRUE);
}

BOOL ScriptedWinHttp::WinHttpReceiveResponse(HINTERNET request, LPVOID reserved) {
  EXPECT_EQ(reserved, nullptr);
  calls.push_back(CallLine("WinHttpReceiveResponse", std::to_string(NumberOf(request))));
  Handle* sent = Find(request, Kind::kRequest, "WinHttpReceiveResponse");
  if (sent == nullptr || sent->received) return Done(FALSE, ERROR_WINHTTP_INCORRECT_HANDLE_STATE);
  sent->received = sent->answer.receiveError == 0;
  return Done(sent->received, sent->answer.receiveError);
}

BOOL ScriptedWinHttp::WinHttpQueryHeaders(HINTERNET request, DWORD infoLevel, LPCWSTR name,
                                          LPVOID buffer, DWORD* size, DWORD* index) {
  calls.push_back(CallLine("WinHttpQueryHeaders", std::to_string(NumberOf(request)),
                           std::to_string(infoLevel), std::to_string(*size)));
  EXPECT_EQ(name, nullptr);
  EXPECT_EQ(index, nullptr);
  Handle* sent = Find(request, Kind::kRequest, "WinHttpQueryHeaders");
  if (sent == nullptr || !sent->received) return Done(FALSE, ERROR_WINHTTP_INCORRECT_HANDLE_STATE);
  // A query that succeeds with no room: nothing of the kind is to be had from a platform.
  if (Fails("WinHttpQueryHeaders succeeds at once")) return Done(TRUE);
  WideString value;
  if (infoLevel == WINHTTP_QUERY_STATUS_CODE) {
    value = sent->answer.status;
  } else if (sent->answer.headers.count(infoLevel) != 0) {
    value = sent->answer.headers[infoLevel];
  }
  if (value.empty()) return Done(FALSE, ERROR_WINHTTP_HEADER_NOT_FOUND);
  const auto needed = static_cast<DWORD>((value.size() + 1) * sizeof(OLECHAR));
  if (buffer == nullptr || needed > *size) {
    *size = needed;
    return Done(FALSE, ERROR_INSUFFICIENT_BUFFER);
  }
  if (Fails("WinHttpQueryHeaders")) return Done(FALSE);
  std::memcpy(buffer, value.c_str(), needed);
  *size = needed - static_cast<DWORD>(sizeof(OLECHAR));
  return Done(TRUE);
}

BOOL ScriptedWinHttp::WinHttpQueryDataAvailable(HINTERNET request, DWORD* available) {
  calls.push_back(CallLine("WinHttpQueryDataAvailable", std::to_string(NumberOf(request))));
  *available = 0;
  Handle* sent = Find(request, Kind::kRequest, "WinHttpQueryDataAvailable");
  if (sent == nullptr || !sent->received) return Done(FALSE, ERROR_WINHTTP_INCORRECT_HANDLE_STATE);
  const HttpAnswer& answer = sent->answer;
  if (sent->chunk < answer.chunks.size()) {
    // Not the chunk's size: readers are not to rely on it.
    *available = 1;
  } else if (answer.availableError != 0) {
    return Done(FALSE, answer.availableError);
  } else if (answer.readError != 0 || answer.endsInRead) {
    *available = 7;
  }
  return Done(TRUE);
}

BOOL ScriptedWinHttp::WinHttpReadData(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) {
  calls.push_back(
      CallLine("WinHttpReadData", std::to_string(NumberOf(request)), std::to_string(size)));
  *read = 0;
  Handle* sent = Find(request, Kind::kRequest, "WinHttpReadData");
  if (sent == nullptr || !sent->received) return Done(FALSE, ERROR_WINHTTP_INCORRECT_HANDLE_STATE);
  if (sent->chunk == sent->answer.chunks.size()) {
    return sent->answer.readError != 0 ? Done(FALSE, sent->answer.readError) : Done(TRUE);
  }
  const std::string& chunk = sent->answer.chunks[sent->chunk++];
  EXPECT_LE(chunk.size(), size) << "the script's chunk is larger than a read";
  *read = static_cast<DWORD>(std::min<std::size_t>(chunk.size(), size));
  std::memcpy(buffer, chunk.data(), *read);
  return Done(TRUE);
}

BOOL ScriptedWinHttp::WinHttpCloseHandle(HINTERNET handle) {
  calls.push_back(CallLine("WinHttpCloseHandle", std::to_string(NumberOf(handle))));
  if (Handle* closed = Find(handle, Kind::kRequest, "WinHttpCloseHandle")) closed->open = false;
  return Done(TRUE);
}

DWORD ScriptedWinHttp::GetLastError() {
  calls.push_back("GetLastError()");
  return m_lastError;
}

}  // namespace velandoc::testing
