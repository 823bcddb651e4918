// CFrontPageConnection, which carries one FrontPage method after the other to one server.
#pragma once

#include "connection/wininet_connection.h"
#include "frontpage/front_page_handler.h"
#include "frontpage/front_page_result.h"

namespace velandoc {

/// The transport of a method: always a POST, to the path that the current handler names. Of the URL
/// only scheme, host, port and extra info count, and the extra info is appended to every path.
///
/// For one request: set m_handler and RunRequest. For another one over the same session and
/// connection: NextHandler and RunRequest.
class CFrontPageConnection : public CWinInetConnection {
 public:
  explicit CFrontPageConnection(LPCWSTR url);

  ~CFrontPageConnection() override;
  /// Empty without a handler, and so is the path.
  WideString GetVerb() override;
  WideString GetUrlPath() override;
  /// Hands the answer to the handler; see CFrontPageHandler::HandleResponse.
  void ProcessResponse() override;
  /// Sends the handler's parameters; m_headers and m_body have no part in it. Without a handler 0,
  /// and the platform is not called. Raises `_com_error` with E_OUTOFMEMORY.
  BOOL SendRequest() override;

  /// Closes the request and puts `handler` in the place of the one before.
  void NextHandler(CFrontPageHandler& handler);

  CFrontPageHandler* m_handler = nullptr;  // borrowed; assigned between requests
  CFrontPageResult m_lastResult;           // a copy of what the last handler parsed
};

/// Open, SendWithRetry, ReadResponse and ProcessResponse; false at the first that fails. True says
/// that a whole answer came with status 200, not that it could be read. Raises what SendRequest and
/// the handler raise.
bool RunRequest(CFrontPageConnection& connection);

}  // namespace velandoc
