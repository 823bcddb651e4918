#include "soap/soap_connection.h"

#include "platform/dom.h"
#include "platform/out_of_memory.h"
#include "soap/soap_namespaces.h"

namespace velandoc {
namespace {

HRESULT ParseResponse(const Bstr& text, WideView serviceNamespace,
                      ComPtr<IXMLDOMDocument2>& response) {
  ComPtr<IXMLDOMDocument2> document;
  const HRESULT result = LoadDomDocument(text, document);
  if (FAILED(result)) return result;
  const WideString namespaces = WideString(OLESTR("xmlns:soap='"))
                                    .append(kSoapEnvelopeNamespace)
                                    .append(OLESTR("' xmlns:resp='"))
                                    .append(serviceNamespace)
                                    .append(OLESTR("'"));
  SetSelectionNamespaces(document.Get(), namespaces);
  response = std::move(document);
  return S_OK;
}

// UTF-8, up to the first NUL. An answer is held whole, so no form of it outlives the next one.
Bstr DecodeText(NarrowString&& bytes) {
  WideString text = FromUtf8(bytes.c_str());
  NarrowString().swap(bytes);
  return Bstr(text);
}

}  // namespace

CSoapConnection::CSoapConnection(LPCWSTR endpoint)
    : CWinInetConnection(endpoint, OLESTR("POST"), true) {}

CSoapConnection::~CSoapConnection() = default;

HRESULT CSoapConnection::Call(const CSoapEnvelope& envelope, ComPtr<IXMLDOMDocument2>& response) {
  return RaiseOutOfMemory([&] { return Exchange(envelope, response); });
}

HRESULT CSoapConnection::Exchange(const CSoapEnvelope& envelope,
                                  ComPtr<IXMLDOMDocument2>& response) {
  const WideString body = GetNodeXml(envelope.Document());
  // A single line feed between the two, and no quotes round the action: that is what servers have
  // always been sent.
  const WideView beginning = OLESTR("Content-Type: text/xml; charset=utf-8\nSOAPAction: ");
  WideString headers;
  headers.reserve(beginning.size() + envelope.Namespace().size() + envelope.MethodName().size());
  headers.append(beginning).append(envelope.Namespace()).append(envelope.MethodName());
  HRESULT result = Open(headers.c_str(), body.c_str());
  if (FAILED(result)) return result;
  result = SendWithRetry();
  if (FAILED(result)) return result;
  if (!ReadResponse()) return E_FAIL;
  ProcessResponse();
  return ParseResponse(DecodeText(GetResponseText()), envelope.Namespace(), response);
}

}  // namespace velandoc
