// What both HDFS clients say about a failure, and where: in the client's CConnectionError, which
// the host reads at leisure, and in the thread's error object, which a scripting host shows.
#pragma once

#include "hdfs/connection_error.h"
#include "hdfs/rich_error.h"
#include "platform/owners.h"
#include "platform/port.h"

namespace velandoc {

/// In what the reports of the two clients differ.
struct ErrorOrigin {
  /// The coclass.
  const CLSID* classId;
  /// The library that has the texts of its own error codes: "wininet.dll", "winhttp.dll".
  LPCWSTR messageModule;
  /// The last error, from the port that the client's connections use.
  DWORD (*getLastError)();
};

/// `Port` is WinInet or WinHttp.
template <class Port>
DWORD LastErrorOf() {
  return CurrentPort<Port>().GetLastError();
}

/// A part of each client. The reports fail in one way only: `_com_error` with E_OUTOFMEMORY. Where
/// the system can't make an error object, m_connectionError is right all the same.
class ErrorReports {
 public:
  ErrorReports(const ErrorReports&) = delete;
  ErrorReports& operator=(const ErrorReports&) = delete;

 protected:
  explicit ErrorReports(const ErrorOrigin& origin) : m_origin(origin) {}
  ~ErrorReports() = default;

  /// The first step of a request: a new object with 0 and no text becomes m_connectionError. It is
  /// not replaced after a success: it then says the status and nothing else.
  void RenewConnectionError();

  /// Says why the request of the current object failed, in that object and with source 102:
  /// - an answer with another status than 200: `body`, read as ANSI text, NULs and all. The caller
  ///   reads at most 32768 bytes of it;
  /// - no answer, or a 200: the message table's text of `lastError`;
  /// - the same with `lastError` 0: row 101.
  /// The status stands in the object already.
  void ReportRequestFailure(DWORD status, DWORD lastError, const NarrowString& body);

  // Each of these three makes a new object, so its status reads 0 even if an answer was the reason.

  void ReportHresultError(HRESULT hr, WORD sourceId);
  void ReportTextError(const WideString& text, WORD sourceId);
  /// The last error in the words of the message table, with source 104. To be called before
  /// anything else can overwrite the last error.
  void ReportLastError();

  /// What a client's property gives: one more reference; null with S_OK before the first request.
  /// E_POINTER for null.
  HRESULT GetConnectionError(IConnectionError** error) const;

  ComPtr<CComObject<CConnectionError>> m_connectionError;

 private:
  WideString ModuleText(DWORD code) const;
  void Describe(const WideString& text, WORD sourceId);

  const ErrorOrigin& m_origin;
};

}  // namespace velandoc
