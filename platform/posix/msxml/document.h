// The document object.
#pragma once

#include "platform/posix/com/counted.h"
#include "platform/posix/msxml/node_object.h"
#include "platform/posix/msxml/parser.h"

namespace velandoc::dom {

/// An empty document with MSXML 6's defaults. Its properties: SelectionNamespaces,
/// SelectionLanguage ("XPath" is the only one), ProhibitDTD (true and no other), MaxElementDepth
/// (kMaxDepth, cannot be set). setProperty and getProperty are E_FAIL for any other name,
/// setProperty E_FAIL or E_INVALIDARG for a value that cannot be, and the property then keeps its
/// value. Loads are never asynchronous, whatever put_async said.
class Document final : public Counted<ULONG, NodeObject<IXMLDOMDocument2>> {
 public:
  /// Holds one reference, the caller's. Raises std::bad_alloc.
  Document();

  HRESULT STDMETHODCALLTYPE get_doctype(IXMLDOMDocumentType** doctype) override {
    return GiveNothing(doctype);
  }
  HRESULT STDMETHODCALLTYPE get_implementation(IXMLDOMImplementation** implementation) override {
    return NotImplemented(implementation);
  }
  HRESULT STDMETHODCALLTYPE get_documentElement(IXMLDOMElement** element) override;
  /// The root that was there is taken out; null only does that.
  HRESULT STDMETHODCALLTYPE putref_documentElement(IXMLDOMElement* element) override;
  HRESULT STDMETHODCALLTYPE createElement(BSTR name, IXMLDOMElement** element) override;
  HRESULT STDMETHODCALLTYPE createDocumentFragment(IXMLDOMDocumentFragment** fragment) override {
    return NotImplemented(fragment);
  }
  HRESULT STDMETHODCALLTYPE createTextNode(BSTR data, IXMLDOMText** text) override;
  HRESULT STDMETHODCALLTYPE createComment(BSTR data, IXMLDOMComment** comment) override;
  HRESULT STDMETHODCALLTYPE createCDATASection(BSTR data, IXMLDOMCDATASection** section) override;
  HRESULT STDMETHODCALLTYPE createProcessingInstruction(
      BSTR target, BSTR data, IXMLDOMProcessingInstruction** instruction) override;
  HRESULT STDMETHODCALLTYPE createAttribute(BSTR name, IXMLDOMAttribute** attribute) override;
  HRESULT STDMETHODCALLTYPE createEntityReference(BSTR,
                                                  IXMLDOMEntityReference** reference) override {
    return NotImplemented(reference);
  }
  HRESULT STDMETHODCALLTYPE getElementsByTagName(BSTR name, IXMLDOMNodeList** result) override;
  HRESULT STDMETHODCALLTYPE createNode(VARIANT type, BSTR name, BSTR namespaceUri,
                                       IXMLDOMNode** node) override;
  HRESULT STDMETHODCALLTYPE nodeFromID(BSTR, IXMLDOMNode** node) override {
    return NotImplemented(node);
  }
  HRESULT STDMETHODCALLTYPE load(VARIANT, VARIANT_BOOL* success) override {
    if (success != nullptr) *success = VARIANT_FALSE;
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE get_readyState(LONG* state) override;
  HRESULT STDMETHODCALLTYPE get_parseError(IXMLDOMParseError** error) override;
  HRESULT STDMETHODCALLTYPE get_url(BSTR* url) override { return GiveNothing(url); }
  HRESULT STDMETHODCALLTYPE get_async(VARIANT_BOOL* isAsync) override {
    return Give(isAsync, m_isAsync);
  }
  HRESULT STDMETHODCALLTYPE put_async(VARIANT_BOOL isAsync) override {
    return Set(m_isAsync, isAsync);
  }
  HRESULT STDMETHODCALLTYPE abort() override { return E_NOTIMPL; }
  /// S_OK and true, or S_FALSE and false for a text that Parse refuses; the document is then empty,
  /// and get_parseError tells why. E_OUTOFMEMORY leaves the document as it was.
  HRESULT STDMETHODCALLTYPE loadXML(BSTR xml, VARIANT_BOOL* success) override;
  HRESULT STDMETHODCALLTYPE save(VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_validateOnParse(VARIANT_BOOL* validating) override {
    return Give(validating, m_validateOnParse);
  }
  /// Kept for who asks; without a DTD there is nothing to validate against.
  HRESULT STDMETHODCALLTYPE put_validateOnParse(VARIANT_BOOL validating) override {
    return Set(m_validateOnParse, validating);
  }
  HRESULT STDMETHODCALLTYPE get_resolveExternals(VARIANT_BOOL* resolving) override {
    return Give(resolving, m_resolveExternals);
  }
  /// Kept for who asks; nothing is ever loaded from outside.
  HRESULT STDMETHODCALLTYPE put_resolveExternals(VARIANT_BOOL resolving) override {
    return Set(m_resolveExternals, resolving);
  }
  HRESULT STDMETHODCALLTYPE get_preserveWhiteSpace(VARIANT_BOOL* preserving) override {
    return Give(preserving, m_preserveWhiteSpace);
  }
  HRESULT STDMETHODCALLTYPE put_preserveWhiteSpace(VARIANT_BOOL preserving) override {
    return Set(m_preserveWhiteSpace, preserving);
  }
  HRESULT STDMETHODCALLTYPE put_onreadystatechange(VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_ondataavailable(VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_ontransformnode(VARIANT) override { return E_NOTIMPL; }

  HRESULT STDMETHODCALLTYPE get_namespaces(IXMLDOMSchemaCollection** namespaces) override {
    return NotImplemented(namespaces);
  }
  HRESULT STDMETHODCALLTYPE get_schemas(VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE putref_schemas(VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE validate(IXMLDOMParseError** error) override {
    return NotImplemented(error);
  }
  HRESULT STDMETHODCALLTYPE setProperty(BSTR name, VARIANT value) override;
  HRESULT STDMETHODCALLTYPE getProperty(BSTR name, VARIANT* value) override;

 private:
  ~Document() override;

  template <class Object>
  static HRESULT NotImplemented(Object** out) {
    if (out != nullptr) *out = nullptr;
    return E_NOTIMPL;
  }
  static HRESULT Set(VARIANT_BOOL& property, VARIANT_BOOL value) {
    property = value != VARIANT_FALSE ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
  }

  /// Takes the place of the tree there is. Raises std::bad_alloc before anything has changed.
  void ReplaceTree(XmlDocOwner doc);

  /// A new node with this data, handed out under its kind's interface.
  template <class Interface>
  HRESULT Create(DOMNodeType type, BSTR name, BSTR data, Interface** node);

  VARIANT_BOOL m_isAsync = VARIANT_TRUE;
  VARIANT_BOOL m_validateOnParse = VARIANT_TRUE;
  VARIANT_BOOL m_resolveExternals = VARIANT_FALSE;
  VARIANT_BOOL m_preserveWhiteSpace = VARIANT_FALSE;
  std::string m_selectionNamespacesText;
  SelectionNamespaces m_selectionNamespaces;
  ParseFailure m_failure;
};

}  // namespace velandoc::dom
