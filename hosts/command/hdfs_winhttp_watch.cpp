#include "hosts/command/hdfs_winhttp_watch.h"

#include <array>

#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

constexpr std::size_t kUrlCapacity = 4096;  // a longer one's end plays no part

// WinHTTP's bits for certificates: authority, usage, name, dates.
constexpr DWORD kIgnoreCertificateProblems = 0x100 | 0x200 | 0x1000 | 0x2000;

HdfsExchangeLog& Log() { return HdfsExchangeLog::OfThread(); }

DWORD& LastError() {
  thread_local DWORD error = 0;
  return error;
}

WideString UrlOf(WinHttp& below, HINTERNET request) {
  std::array<OLECHAR, kUrlCapacity> buffer{};
  DWORD size = sizeof buffer;
  if (!below.WinHttpQueryOption(request, WINHTTP_OPTION_URL, buffer.data(), &size)) return {};
  return WideString(ViewOf(buffer.data()));
}

int StatusOf(WinHttp& below, HINTERNET request) {
  std::array<OLECHAR, 16> buffer{};
  DWORD size = sizeof buffer;
  const BOOL known = below.WinHttpQueryHeaders(request, WINHTTP_QUERY_STATUS_CODE, nullptr,
                                               buffer.data(), &size, nullptr);
  return known ? StatusNumber(ViewOf(buffer.data())) : 0;
}

}  // namespace

// The error is read at once, before anything of ours can overwrite it.
template <class Result>
Result HdfsWinHttpWatch::Keep(Result result) {
  if (!result) LastError() = m_below.GetLastError();
  return result;
}

BOOL HdfsWinHttpWatch::Need(HINTERNET request, BOOL result) {
  if (!Keep(result)) Log().Fail(request, LastError());
  return result;
}

HINTERNET HdfsWinHttpWatch::WinHttpOpen(LPCWSTR agent, DWORD accessType, LPCWSTR proxy,
                                        LPCWSTR proxyBypass, DWORD flags) {
  return Keep(m_below.WinHttpOpen(agent, accessType, proxy, proxyBypass, flags));
}

HINTERNET HdfsWinHttpWatch::WinHttpConnect(HINTERNET session, LPCWSTR serverName,
                                           INTERNET_PORT port, DWORD reserved) {
  Log().Connect(Utf8FromWide(ViewOf(serverName)), port);
  return Keep(m_below.WinHttpConnect(session, serverName, port, reserved));
}

HINTERNET HdfsWinHttpWatch::WinHttpOpenRequest(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName,
                                               LPCWSTR version, LPCWSTR referrer,
                                               LPCWSTR* acceptTypes, DWORD flags) {
  HINTERNET request = Keep(
      m_below.WinHttpOpenRequest(connect, verb, objectName, version, referrer, acceptTypes, flags));
  const bool made = request != nullptr;
  Log().Open(request, Utf8FromWide(ViewOf(verb)), made ? UrlOf(m_below, request) : WideString(),
             made ? 0 : LastError());
  if (made && m_ignoresCertificates) {
    DWORD ignored = kIgnoreCertificateProblems;
    m_below.WinHttpSetOption(request, WINHTTP_OPTION_SECURITY_FLAGS, &ignored, sizeof ignored);
  }
  return request;
}

BOOL HdfsWinHttpWatch::WinHttpSetOption(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) {
  return Keep(m_below.WinHttpSetOption(handle, option, buffer, size));
}

BOOL HdfsWinHttpWatch::WinHttpQueryOption(HINTERNET handle, DWORD option, LPVOID buffer,
                                          DWORD* size) {
  return Keep(m_below.WinHttpQueryOption(handle, option, buffer, size));
}

BOOL HdfsWinHttpWatch::WinHttpSetCredentials(HINTERNET request, DWORD target, DWORD scheme,
                                             LPCWSTR userName, LPCWSTR password,
                                             LPVOID parameters) {
  return Keep(
      m_below.WinHttpSetCredentials(request, target, scheme, userName, password, parameters));
}

BOOL HdfsWinHttpWatch::WinHttpSendRequest(HINTERNET request, LPCWSTR headers, DWORD headersLength,
                                          LPVOID optional, DWORD optionalLength, DWORD totalLength,
                                          DWORD_PTR context) {
  return Need(request, m_below.WinHttpSendRequest(request, headers, headersLength, optional,
                                                  optionalLength, totalLength, context));
}

BOOL HdfsWinHttpWatch::WinHttpWriteData(HINTERNET request, LPCVOID buffer, DWORD size,
                                        DWORD* written) {
  const BOOL result = Need(request, m_below.WinHttpWriteData(request, buffer, size, written));
  if (result) Log().Write(*written);
  return result;
}

BOOL HdfsWinHttpWatch::WinHttpReceiveResponse(HINTERNET request, LPVOID reserved) {
  const BOOL result = Keep(m_below.WinHttpReceiveResponse(request, reserved));
  Log().Answer(request, result ? StatusOf(m_below, request) : 0, result ? 0 : LastError(),
               UrlOf(m_below, request));
  return result;
}

BOOL HdfsWinHttpWatch::WinHttpQueryHeaders(HINTERNET request, DWORD infoLevel, LPCWSTR name,
                                           LPVOID buffer, DWORD* size, DWORD* index) {
  return Keep(m_below.WinHttpQueryHeaders(request, infoLevel, name, buffer, size, index));
}

BOOL HdfsWinHttpWatch::WinHttpQueryDataAvailable(HINTERNET request, DWORD* available) {
  return Need(request, m_below.WinHttpQueryDataAvailable(request, available));
}

BOOL HdfsWinHttpWatch::WinHttpReadData(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) {
  const BOOL result = Need(request, m_below.WinHttpReadData(request, buffer, size, read));
  if (result) Log().Read(request, buffer, *read);
  return result;
}

BOOL HdfsWinHttpWatch::WinHttpCloseHandle(HINTERNET handle) {
  Log().Close(handle);
  return Keep(m_below.WinHttpCloseHandle(handle));
}

DWORD HdfsWinHttpWatch::GetLastError() { return LastError(); }

}  // namespace velandoc
