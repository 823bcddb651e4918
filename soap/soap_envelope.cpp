#include "soap/soap_envelope.h"

#include "platform/dom.h"
#include "platform/out_of_memory.h"
#include "soap/copy_node.h"
#include "soap/soap_namespaces.h"

namespace velandoc {
namespace {

WideString EmptyEnvelope() {
  return WideString(OLESTR("<soap:Envelope xmlns:soap='"))
      .append(kSoapEnvelopeNamespace)
      .append(OLESTR("'><soap:Body/></soap:Envelope>"));
}

}  // namespace

CSoapEnvelope::CSoapEnvelope() {
  if (FAILED(CoCreateInstance(CLSID_DOMDocument60, nullptr, CLSCTX_ALL, IID_IXMLDOMDocument2,
                              m_document.ReceiveVoid()))) {
    return;
  }
  try {
    RaiseOutOfMemory([&] { Load(); });
  } catch (const _com_error&) {
    m_document.Reset();
  }
  if (m_document) return;
  m_method.Reset();
  m_body.Reset();
  m_envelope.Reset();
}

// Leaves m_document null if the text does not parse.
void CSoapEnvelope::Load() {
  CheckResult(m_document->put_async(VARIANT_FALSE));
  VARIANT_BOOL parsed = VARIANT_FALSE;
  CheckResult(m_document->loadXML(Bstr(EmptyEnvelope()).Get(), &parsed));
  if (parsed == VARIANT_FALSE) {
    m_document.Reset();
    return;
  }
  m_envelope = GetFirstChild(m_document.Get());
  m_body = GetFirstChild(m_envelope.Get());
}

CSoapEnvelope::CSoapEnvelope(LPCWSTR methodName) : CSoapEnvelope() {
  if (m_document) SetMethod(methodName, SoapServiceNamespace.c_str());
}

void CSoapEnvelope::SetMethod(LPCWSTR methodName, LPCWSTR serviceNamespace) {
  if (!m_body || m_method) _com_issue_error(E_FAIL);
  m_method =
      CreateDomNode(m_document.Get(), NODE_ELEMENT, ViewOf(methodName), ViewOf(serviceNamespace));
  AppendNode(m_body.Get(), m_method.Get());
  RaiseOutOfMemory([&] {
    m_methodName = ViewOf(methodName);
    m_namespace = ViewOf(serviceNamespace);
  });
}

void CSoapEnvelope::AddParameter(LPCWSTR name, LPCWSTR value) {
  const ComPtr<IXMLDOMNode> parameter = CreateParameter(name);
  PutNodeText(parameter.Get(), ViewOf(value));
  AppendNode(m_method.Get(), parameter.Get());
}

void CSoapEnvelope::AddCheckInType(VARIANT& value) {
  const ComPtr<IXMLDOMNode> parameter = CreateParameter(OLESTR("checkinType"));
  if (value.vt != VT_BSTR) CheckResult(VariantChangeType(&value, &value, 0, VT_BSTR));
  CheckResult(parameter->put_text(value.bstrVal));
  AppendNode(m_method.Get(), parameter.Get());
  VariantClear(&value);
}

void CSoapEnvelope::AddXmlParameter(LPCWSTR name, LPCWSTR xml) {
  try {
    RaiseOutOfMemory([&] { AppendFragment(name, xml); });
  } catch (const _com_error&) {
    // The call goes out without the parameter; see the header.
  }
}

void CSoapEnvelope::AppendFragment(LPCWSTR name, LPCWSTR xml) {
  ComPtr<IXMLDOMDocument2> scratch;
  if (FAILED(CreateDomDocument(scratch))) return;
  // The only document that is loaded this way. Text is parsed before loadXML returns all the same.
  CheckResult(scratch->put_async(VARIANT_TRUE));
  VARIANT_BOOL parsed = VARIANT_FALSE;
  CheckResult(scratch->loadXML(Bstr(ViewOf(xml)).Get(), &parsed));
  if (parsed == VARIANT_FALSE) return;
  const ComPtr<IXMLDOMNode> parameter = CreateParameter(name);
  CopyNode(parameter.Get(), GetFirstChild(scratch.Get()).Get(), true);
  AppendNode(m_method.Get(), parameter.Get());
}

ComPtr<IXMLDOMNode> CSoapEnvelope::CreateParameter(LPCWSTR name) {
  return CreateDomNode(m_document.Get(), NODE_ELEMENT, ViewOf(name), m_namespace);
}

}  // namespace velandoc
