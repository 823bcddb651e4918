#include "tests/support/winhttp_exchange.h"

#include <algorithm>
#include <vector>

namespace velandoc::test {
namespace {

WinHttp& Port() { return CurrentPort<WinHttp>(); }

DWORD Result(BOOL success) { return success ? ERROR_SUCCESS : Port().GetLastError(); }

}  // namespace

HttpExchange::HttpExchange(const char* host, INTERNET_PORT port, LPCWSTR verb, LPCWSTR objectName,
                           DWORD flags, DWORD accessType) {
  static LPCWSTR acceptTypes[] = {OLESTR("text/*"), OLESTR("application/json"), nullptr};
  const std::string name = host;
  m_session = Port().WinHttpOpen(OLESTR("CWinHttpConnection"), accessType, nullptr, nullptr, 0);
  m_connect =
      Port().WinHttpConnect(m_session, WideString(name.begin(), name.end()).c_str(), port, 0);
  m_request =
      Port().WinHttpOpenRequest(m_connect, verb, objectName, nullptr, nullptr, acceptTypes, flags);
}

HttpExchange::~HttpExchange() {
  for (HINTERNET handle : {m_request, m_connect, m_session}) {
    if (handle != nullptr) Port().WinHttpCloseHandle(handle);
  }
}

DWORD HttpExchange::SetOption(DWORD option, DWORD value) {
  return Result(Port().WinHttpSetOption(m_request, option, &value, sizeof value));
}

DWORD HttpExchange::SetCredentials(DWORD scheme, LPCWSTR userName, LPCWSTR password, DWORD target) {
  return Result(
      Port().WinHttpSetCredentials(m_request, target, scheme, userName, password, nullptr));
}

DWORD HttpExchange::Send(const std::string& body, DWORD total, LPCWSTR headers) {
  std::string copy = body;
  const auto length = static_cast<DWORD>(copy.size());
  return Result(Port().WinHttpSendRequest(
      m_request, headers, headers != nullptr ? static_cast<DWORD>(-1) : 0,
      copy.empty() ? nullptr : copy.data(), length, std::max(total, length), 0));
}

DWORD HttpExchange::Write(const std::string& data) {
  DWORD written = 77;
  if (!Port().WinHttpWriteData(m_request, data.data(), static_cast<DWORD>(data.size()), &written)) {
    return Port().GetLastError();
  }
  return written == data.size() ? static_cast<DWORD>(ERROR_SUCCESS) : ~0U;
}

DWORD HttpExchange::Receive() { return Result(Port().WinHttpReceiveResponse(m_request, nullptr)); }

DWORD HttpExchange::Run() {
  const DWORD error = Send();
  return error == ERROR_SUCCESS ? Receive() : error;
}

std::string HttpExchange::ReadAll(DWORD step, DWORD* error) {
  std::string text;
  std::vector<char> buffer(step);
  DWORD ignored = 0;
  DWORD& result = error != nullptr ? *error : ignored;
  for (;;) {
    DWORD count = 0;
    result = Result(Port().WinHttpQueryDataAvailable(m_request, &count));
    if (result != ERROR_SUCCESS || count == 0) return text;
    result = Result(Port().WinHttpReadData(m_request, buffer.data(), step, &count));
    if (result != ERROR_SUCCESS || count == 0) return text;
    text.append(buffer.data(), count);
  }
}

DWORD HttpExchange::Status() {
  const std::string text = Header(WINHTTP_QUERY_STATUS_CODE);
  return text == "(none)" ? 0 : static_cast<DWORD>(std::stoul(text));
}

std::string HttpExchange::Header(DWORD number, DWORD* index, LPCWSTR name) {
  WCHAR buffer[2048];
  DWORD size = sizeof(buffer);
  if (!Port().WinHttpQueryHeaders(m_request, number, name, buffer, &size, index)) return "(none)";
  std::string text;
  for (DWORD i = 0; i < size / sizeof(WCHAR); ++i) text += static_cast<char>(buffer[i]);
  return text;
}

}  // namespace velandoc::test
