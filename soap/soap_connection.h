// CSoapConnection, which carries one web-service call after the other to one service.
#pragma once

#include "connection/wininet_connection.h"
#include "platform/msxml.h"
#include "platform/owners.h"
#include "soap/soap_envelope.h"

namespace velandoc {

/// Adds a call to CWinInetConnection and nothing to its state: always a POST, to an endpoint that
/// still is to be escaped.
class CSoapConnection : public CWinInetConnection {
 public:
  explicit CSoapConnection(LPCWSTR endpoint);
  ~CSoapConnection() override;

  /// Sends what `envelope` holds and parses the answer. On success `response`, null on entry, is
  /// the answer's document with the prefixes "soap" and "resp" ready for XPath, "resp" being the
  /// namespace of this call's method.
  ///
  /// E_FAIL for every HTTP status but 200 (a fault comes as 500 and is not read), for a body that
  /// breaks off, and for one that is no XML; else the failure of making or loading the document.
  /// Raises `_com_error` for a failing DOM call on the way, E_POINTER if the envelope has no
  /// document. `response` stays null then.
  ///
  /// May be called again with another envelope. The request handle of the call before stays open
  /// (see Open).
  HRESULT Call(const CSoapEnvelope& envelope, ComPtr<IXMLDOMDocument2>& response);

 private:
  HRESULT Exchange(const CSoapEnvelope& envelope, ComPtr<IXMLDOMDocument2>& response);
};

}  // namespace velandoc
