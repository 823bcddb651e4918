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

DWORD& HdfsWinInetWatch::LastError() {
  thread_local DWORD error = 0;
  return error;
}

BOOL HdfsWinInetWatch::Answered(HINTERNET request, BOOL result) {
  Log().Answer(request, result ? StatusOf(Below(), request) : 0, result ? 0 : LastError(),
               UrlOf(Below(), request));
  return result;
}

HINTERNET HdfsWinInetWatch::InternetConnectW(HINTERNET session, LPCWSTR serverName,
                                             INTERNET_PORT port, LPCWSTR userName, LPCWSTR password,
                                             DWORD service, DWORD flags, DWORD_PTR context) {
  Log().Connect(Utf8FromWide(ViewOf(serverName)), port);
  return ForwardingWinInet::InternetConnectW(session, serverName, port, userName, password, service,
                                             flags, context);
}

HINTERNET HdfsWinInetWatch::HttpOpenRequestW(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName,
                                             LPCWSTR version, LPCWSTR referrer,
                                             LPCWSTR* acceptTypes, DWORD flags, DWORD_PTR context) {
  HINTERNET request = ForwardingWinInet::HttpOpenRequestW(connect, verb, objectName, version,
                                                          referrer, acceptTypes, flags, context);
  const bool made = request != nullptr;
  Log().Open(request, Utf8FromWide(ViewOf(verb)), made ? UrlOf(Below(), request) : WideString(),
             made ? 0 : LastError());
  if (made && m_ignoresCertificates) IgnoreCertificates(Below(), request);
  return request;
}

BOOL HdfsWinInetWatch::HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength,
                                        LPVOID optional, DWORD optionalLength) {
  return Answered(request, ForwardingWinInet::HttpSendRequestW(request, headers, headersLength,
                                                               optional, optionalLength));
}

BOOL HdfsWinInetWatch::HttpSendRequestExW(HINTERNET request, INTERNET_BUFFERSW* buffersIn,
                                          INTERNET_BUFFERSW* buffersOut, DWORD flags,
                                          DWORD_PTR context) {
  const BOOL result =
      ForwardingWinInet::HttpSendRequestExW(request, buffersIn, buffersOut, flags, context);
  if (!result) Log().Fail(request, LastError());
  return result;
}

BOOL HdfsWinInetWatch::InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size,
                                         DWORD* written) {
  const BOOL result = ForwardingWinInet::InternetWriteFile(request, buffer, size, written);
  if (result) Log().Write(*written);
  return result;
}

BOOL HdfsWinInetWatch::HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* buffersOut,
                                       DWORD flags, DWORD_PTR context) {
  return Answered(request, ForwardingWinInet::HttpEndRequestW(request, buffersOut, flags, context));
}

BOOL HdfsWinInetWatch::InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) {
  const BOOL result = ForwardingWinInet::InternetReadFile(request, buffer, size, read);
  if (!result) Log().Fail(request, LastError());
  if (result) Log().Read(request, buffer, *read);
  return result;
}

BOOL HdfsWinInetWatch::InternetCloseHandle(HINTERNET handle) {
  Log().Close(handle);
  return ForwardingWinInet::InternetCloseHandle(handle);
}

}  // namespace velandoc
