#include "tests/support/wininet_exchange.h"

#include <vector>

namespace velandoc::test {
namespace {

WinInet& Port() { return CurrentPort<WinInet>(); }

WideString Widen(const std::string& text) { return WideString(text.begin(), text.end()); }

}  // namespace

Exchange::Exchange(const char* host, INTERNET_PORT port, LPCWSTR verb, LPCWSTR objectName,
                   DWORD flags) {
  static LPCWSTR acceptTypes[] = {OLESTR("text/*"), nullptr};
  m_session = Port().InternetOpenW(OLESTR("CWinInetConnection"), INTERNET_OPEN_TYPE_PRECONFIG,
                                   nullptr, nullptr, 0);
  m_connect = Port().InternetConnectW(m_session, Widen(host).c_str(), port, nullptr, nullptr,
                                      INTERNET_SERVICE_HTTP, INTERNET_FLAG_NO_UI, 0);
  m_request =
      Port().HttpOpenRequestW(m_connect, verb, objectName, nullptr, nullptr, acceptTypes, flags, 0);
}

Exchange::~Exchange() {
  for (HINTERNET handle : {m_request, m_connect, m_session}) {
    if (handle != nullptr) Port().InternetCloseHandle(handle);
  }
}

DWORD Exchange::Send(LPCWSTR headers, const std::string& body) {
  std::string copy = body;
  const BOOL sent = Port().HttpSendRequestW(m_request, headers, static_cast<DWORD>(-1), copy.data(),
                                            static_cast<DWORD>(copy.size()));
  return sent ? ERROR_SUCCESS : Port().GetLastError();
}

DWORD Exchange::Begin(long long length) {
  INTERNET_BUFFERSW buffers = {};
  buffers.dwStructSize = sizeof(buffers);
  WideString header;
  if (length >= 0) {
    header = OLESTR("Content-Length: ");
    header += Widen(std::to_string(length));
    buffers.lpcszHeader = header.c_str();
    buffers.dwHeadersLength = static_cast<DWORD>(header.size());
  }
  return Port().HttpSendRequestExW(m_request, &buffers, nullptr, 0, 0) ? ERROR_SUCCESS
                                                                       : Port().GetLastError();
}

DWORD Exchange::Write(const std::string& data) {
  DWORD written = 0;
  if (!Port().InternetWriteFile(m_request, data.data(), static_cast<DWORD>(data.size()),
                                &written)) {
    return Port().GetLastError();
  }
  return written == data.size() ? static_cast<DWORD>(ERROR_SUCCESS) : ~0U;
}

DWORD Exchange::End() {
  return Port().HttpEndRequestW(m_request, nullptr, 0, 0) ? ERROR_SUCCESS : Port().GetLastError();
}

std::string Exchange::ReadAll(DWORD step, DWORD* error) {
  std::string text;
  std::vector<char> buffer(step);
  if (error != nullptr) *error = ERROR_SUCCESS;
  for (;;) {
    DWORD count = 0;
    if (!Port().InternetReadFile(m_request, buffer.data(), step, &count)) {
      if (error != nullptr) *error = Port().GetLastError();
      return text;
    }
    if (count == 0) return text;
    text.append(buffer.data(), count);
  }
}

DWORD Exchange::Status() {
  const std::string text = Header(HTTP_QUERY_STATUS_CODE);
  return text == "(none)" ? 0 : static_cast<DWORD>(std::stoul(text));
}

std::string Exchange::Header(DWORD number, DWORD* index) {
  WCHAR buffer[2048];
  DWORD size = sizeof(buffer);
  if (!Port().HttpQueryInfoW(m_request, number, buffer, &size, index)) return "(none)";
  std::string text;
  for (DWORD i = 0; i < size / sizeof(WCHAR); ++i) text += static_cast<char>(buffer[i]);
  return text;
}

}  // namespace velandoc::test
