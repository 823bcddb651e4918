#include "hosts/command/hdfs_wininet_watch.h"

#include <array>

#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

constexpr std::size_t kUrlCapacity = 4096;  // a longer one's end plays no part

constexpr DWORD kIgnoreCertificateProblems =
    SECURITY_FLAG_IGNORE_REVOCATION | SECURITY_FLAG_IGNORE_UNKNOWN_CA |
    SECURITY_FLAG_IGNORE_WRONG_USAGE | SECURITY_FLAG_IGNORE_CERT_CN_INVALID |
    SECURITY_FLAG_IGNORE_CERT_DATE_INVALID;

HdfsExchangeLog& Log() { return HdfsExchangeLog::OfThread(); }

DWORD& LastError() {
  thread_local DWORD error = 0;
  return error;
}

WideString UrlOf(WinInet& below, HINTERNET request) {
  std::array<OLECHAR, kUrlCapacity> buffer{};
  DWORD size = sizeof buffer;
  if (!below.InternetQueryOptionW(request, INTERNET_OPTION_URL, buffer.data(), &size)) return {};
  return WideString(ViewOf(buffer.data()));
}

int StatusOf(WinInet& below, HINTERNET request) {
  std::array<OLECHAR, 16> buffer{};
  DWORD size = sizeof buffer;
  const BOOL known =
      below.HttpQueryInfoW(request, HTTP_QUERY_STATUS_CODE, buffer.data(), &size, nullptr);
  return known ? StatusNumber(ViewOf(buffer.data())) : 0;
}

void IgnoreCertificates(WinInet& below, HINTERNET request) {
  DWORD flags = 0;
  DWORD size = sizeof flags;
  below.InternetQueryOptionW(request, INTERNET_OPTION_SECURITY_FLAGS, &flags, &size);
  flags |= kIgnoreCertificateProblems;
  below.InternetSetOptionW(request, INTERNET_OPTION_SECURITY_FLAGS, &flags, sizeof flags);
}

}  // namespace

// The error is read at once, before anything of ours can overwrite it.
template <class Result>
Result HdfsWinInetWatch::Keep(Result result) {
  if (!result) LastError() = m_below.GetLastError();
  return result;
}

BOOL HdfsWinInetWatch::Answered(HINTERNET request, BOOL result) {
  Log().Answer(request, result ? StatusOf(m_below, request) : 0, result ? 0 : LastError(),
               UrlOf(m_below, request));
  return result;
}

HINTERNET HdfsWinInetWatch::InternetOpenW(LPCWSTR agent, DWORD accessType, LPCWSTR proxy,
                                          LPCWSTR proxyBypass, DWORD flags) {
  return Keep(m_below.InternetOpenW(agent, accessType, proxy, proxyBypass, flags));
}

HINTERNET HdfsWinInetWatch::InternetConnectW(HINTERNET session, LPCWSTR serverName,
                                             INTERNET_PORT port, LPCWSTR userName, LPCWSTR password,
                                             DWORD service, DWORD flags, DWORD_PTR context) {
  Log().Connect(Utf8FromWide(ViewOf(serverName)), port);
  return Keep(m_below.InternetConnectW(session, serverName, port, userName, password, service,
                                       flags, context));
}

HINTERNET HdfsWinInetWatch::HttpOpenRequestW(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName,
                                             LPCWSTR version, LPCWSTR referrer,
                                             LPCWSTR* acceptTypes, DWORD flags, DWORD_PTR context) {
  HINTERNET request = Keep(m_below.HttpOpenRequestW(connect, verb, objectName, version, referrer,
                                                    acceptTypes, flags, context));
  const bool made = request != nullptr;
  Log().Open(request, Utf8FromWide(ViewOf(verb)), made ? UrlOf(m_below, request) : WideString(),
             made ? 0 : LastError());
  if (made && m_ignoresCertificates) IgnoreCertificates(m_below, request);
  return request;
}

BOOL HdfsWinInetWatch::HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength,
                                        LPVOID optional, DWORD optionalLength) {
  return Answered(request, Keep(m_below.HttpSendRequestW(request, headers, headersLength, optional,
                                                         optionalLength)));
}

BOOL HdfsWinInetWatch::HttpSendRequestExW(HINTERNET request, INTERNET_BUFFERSW* buffersIn,
                                          INTERNET_BUFFERSW* buffersOut, DWORD flags,
                                          DWORD_PTR context) {
  const BOOL result =
      Keep(m_below.HttpSendRequestExW(request, buffersIn, buffersOut, flags, context));
  if (!result) Log().Fail(request, LastError());
  return result;
}

BOOL HdfsWinInetWatch::InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size,
                                         DWORD* written) {
  const BOOL result = Keep(m_below.InternetWriteFile(request, buffer, size, written));
  if (result) Log().Write(*written);
  return result;
}

BOOL HdfsWinInetWatch::HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* buffersOut,
                                       DWORD flags, DWORD_PTR context) {
  return Answered(request, Keep(m_below.HttpEndRequestW(request, buffersOut, flags, context)));
}

BOOL HdfsWinInetWatch::InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) {
  const BOOL result = Keep(m_below.InternetReadFile(request, buffer, size, read));
  if (!result) Log().Fail(request, LastError());
  if (result) Log().Read(request, buffer, *read);
  return result;
}

BOOL HdfsWinInetWatch::HttpQueryInfoW(HINTERNET request, DWORD infoLevel, LPVOID buffer,
                                      DWORD* size, DWORD* index) {
  return Keep(m_below.HttpQueryInfoW(request, infoLevel, buffer, size, index));
}

DWORD HdfsWinInetWatch::InternetErrorDlg(HWND parent, HINTERNET request, DWORD error, DWORD flags,
                                         LPVOID* data) {
  return m_below.InternetErrorDlg(parent, request, error, flags, data);
}

BOOL HdfsWinInetWatch::InternetQueryOptionW(HINTERNET handle, DWORD option, LPVOID buffer,
                                            DWORD* size) {
  return Keep(m_below.InternetQueryOptionW(handle, option, buffer, size));
}

BOOL HdfsWinInetWatch::InternetSetOptionW(HINTERNET handle, DWORD option, LPVOID buffer,
                                          DWORD size) {
  return Keep(m_below.InternetSetOptionW(handle, option, buffer, size));
}

BOOL HdfsWinInetWatch::InternetCloseHandle(HINTERNET handle) {
  Log().Close(handle);
  return Keep(m_below.InternetCloseHandle(handle));
}

HWND HdfsWinInetWatch::GetActiveWindow() { return m_below.GetActiveWindow(); }

DWORD HdfsWinInetWatch::GetLastError() { return LastError(); }

}  // namespace velandoc
