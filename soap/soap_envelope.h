// CSoapEnvelope, the request of one web-service call while it is built: an XML document with the
// method's element in the body, to which the parameters are appended in the order of the calls.
#pragma once

#include "platform/msxml.h"
#include "platform/owners.h"

namespace velandoc {

/// A local object of one call, on the thread that made it. Its operations raise `_com_error` where
/// they say so.
class CSoapEnvelope {
 public:
  /// Makes an envelope with an empty body. Reports and raises nothing: where that fails all members
  /// stay null, and the caller tests Document().
  CSoapEnvelope();
  /// The same, and SetMethod(methodName, SoapServiceNamespace) if there is a document.
  explicit CSoapEnvelope(LPCWSTR methodName);
  CSoapEnvelope(const CSoapEnvelope&) = delete;
  CSoapEnvelope& operator=(const CSoapEnvelope&) = delete;

  /// Puts the method's element into the body; `serviceNamespace` is its default namespace, and its
  /// parameters'. Raises E_FAIL if there is no body or a method is set already, else the failing
  /// DOM call's result.
  void SetMethod(LPCWSTR methodName, LPCWSTR serviceNamespace);

  /// Appends an element with `value` as its text, which the DOM escapes; null stands for empty
  /// text. Raises what the DOM raises, E_POINTER before SetMethod.
  void AddParameter(LPCWSTR name, LPCWSTR value);

  /// Appends the element "checkinType". `value` is converted to VT_BSTR in place and cleared at the
  /// end. Raises the conversion's failure and what the DOM raises; `value` then stays the caller's
  /// to clear.
  void AddCheckInType(VARIANT& value);

  /// Appends an element that holds a copy of the fragment `xml`, whose root comes out in no
  /// namespace. Raises nothing: a fragment that does not parse or cannot be copied leaves the
  /// parameter out, and nobody is told.
  void AddXmlParameter(LPCWSTR name, LPCWSTR xml);

  /// Null if the envelope could not be made. Borrowed.
  IXMLDOMDocument2* Document() const { return m_document.Get(); }
  const WideString& MethodName() const { return m_methodName; }
  const WideString& Namespace() const { return m_namespace; }

 private:
  void Load();
  void AppendFragment(LPCWSTR name, LPCWSTR xml);
  ComPtr<IXMLDOMNode> CreateParameter(LPCWSTR name);

  // Released from the last to the first: a method before the body that holds it, the document
  // behind all its nodes.
  ComPtr<IXMLDOMDocument2> m_document;
  ComPtr<IXMLDOMNode> m_envelope;
  ComPtr<IXMLDOMNode> m_body;
  ComPtr<IXMLDOMNode> m_method;  // null until SetMethod
  WideString m_methodName;
  WideString m_namespace;
};

}  // namespace velandoc
