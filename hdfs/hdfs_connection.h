// CHdfsConnection, one WebHDFS request over WinINet.
#pragma once

#include "connection/wininet_connection.h"
#include "platform/mfc/file.h"

namespace velandoc {

/// A CWinInetConnection for a URL that is escaped already, with the verb GET until m_verb is
/// assigned. It asks for text and JSON, hands the body to a file as it comes, and does not repeat a
/// request that was answered: any status but 200 is a failure, a 401 too, with the status in
/// m_statusCode and the body unread.
class CHdfsConnection : public CWinInetConnection {
 public:
  explicit CHdfsConnection(LPCWSTR url);
  ~CHdfsConnection() override;

  /// The request was sent before; nothing is left to do with its body.
  void ProcessResponse() override;
  /// S_OK for status 200, E_FAIL for every other and without a request handle. A send that failed
  /// goes to the platform's dialog, which may have it sent again; with m_reportCertificateErrors
  /// off a certificate's date, name and authority are let pass without a question.
  HRESULT SendWithRetry() override;
  /// Writes the body to m_sink, which must be set. False if a read failed. Raises what the sink
  /// raises.
  bool ReadResponse() override;
  const LPCWSTR* GetAcceptTypes() override;

  CFile* m_sink = nullptr;  // not owned; null leaves the body on the connection
  bool m_reportCertificateErrors = true;

 private:
  bool MaySendAgain(DWORD error);
  void IgnoreCertificateErrors();
};

}  // namespace velandoc
