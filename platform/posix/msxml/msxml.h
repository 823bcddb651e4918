// The DOM's interfaces as MSXML declares them, in the order of their virtual tables, for the home
// that has no MSXML.
//
// Common to all operations: an out argument that is null is E_INVALIDARG. Where there is nothing to
// hand out (no parent, no match, no such attribute) the result is S_FALSE and the out argument
// null. What is handed out belongs to the caller: a counted reference, a BSTR. Every node keeps its
// document alive, and one node is one object for as long as anybody holds it. Objects are called on
// the thread that made them.
//
// The operations that this home leaves out answer E_NOTIMPL and touch nothing: load, save, abort,
// validate, schemas and namespaces, event sinks, nodeFromID, document fragments, entity references,
// the transforms, typed values (put_nodeTypedValue, put_dataType), the enumerators (get__newEnum).
// GetIDsOfNames and Invoke know no member (DISP_E_UNKNOWNNAME, DISP_E_MEMBERNOTFOUND): the DOM is
// called through its virtual tables only.
#pragma once

#include "platform/posix/com/com.h"

// An interface has no virtual destructor: its lifetime is its reference count, its binary layout
// COM's.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// The document class; CoCreateInstance serves it.
DEFINE_GUID(CLSID_DOMDocument60, 0x88D96A05, 0xF192, 0x11D4, 0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32,
            0x51, 0xE5);

enum DOMNodeType : std::int32_t {
  NODE_INVALID = 0,
  NODE_ELEMENT = 1,
  NODE_ATTRIBUTE = 2,
  NODE_TEXT = 3,
  NODE_CDATA_SECTION = 4,
  NODE_ENTITY_REFERENCE = 5,
  NODE_ENTITY = 6,
  NODE_PROCESSING_INSTRUCTION = 7,
  NODE_COMMENT = 8,
  NODE_DOCUMENT = 9,
  NODE_DOCUMENT_TYPE = 10,
  NODE_DOCUMENT_FRAGMENT = 11,
  NODE_NOTATION = 12,
};

struct IXMLDOMAttribute;
struct IXMLDOMCDATASection;
struct IXMLDOMComment;
struct IXMLDOMDocument;
struct IXMLDOMDocumentFragment;
struct IXMLDOMDocumentType;
struct IXMLDOMElement;
struct IXMLDOMEntityReference;
struct IXMLDOMImplementation;
struct IXMLDOMNamedNodeMap;
struct IXMLDOMNode;
struct IXMLDOMNodeList;
struct IXMLDOMParseError;
struct IXMLDOMProcessingInstruction;
struct IXMLDOMSchemaCollection;
struct IXMLDOMText;

DEFINE_GUID(IID_IXMLDOMNode, 0x2933BF80, 0x7B36, 0x11D2, 0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E,
            0x60);
struct IXMLDOMNode : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE get_nodeName(BSTR* name) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_nodeValue(VARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_nodeValue(VARIANT value) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_nodeType(DOMNodeType* type) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_parentNode(IXMLDOMNode** parent) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_childNodes(IXMLDOMNodeList** children) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_firstChild(IXMLDOMNode** child) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_lastChild(IXMLDOMNode** child) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_previousSibling(IXMLDOMNode** sibling) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_nextSibling(IXMLDOMNode** sibling) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_attributes(IXMLDOMNamedNodeMap** attributes) = 0;
  virtual HRESULT STDMETHODCALLTYPE insertBefore(IXMLDOMNode* child, VARIANT before,
                                                 IXMLDOMNode** inserted) = 0;
  virtual HRESULT STDMETHODCALLTYPE replaceChild(IXMLDOMNode* child, IXMLDOMNode* old,
                                                 IXMLDOMNode** replaced) = 0;
  virtual HRESULT STDMETHODCALLTYPE removeChild(IXMLDOMNode* child, IXMLDOMNode** removed) = 0;
  virtual HRESULT STDMETHODCALLTYPE appendChild(IXMLDOMNode* child, IXMLDOMNode** appended) = 0;
  virtual HRESULT STDMETHODCALLTYPE hasChildNodes(VARIANT_BOOL* has) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_ownerDocument(IXMLDOMDocument** document) = 0;
  virtual HRESULT STDMETHODCALLTYPE cloneNode(VARIANT_BOOL deep, IXMLDOMNode** clone) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_nodeTypeString(BSTR* type) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_text(BSTR* text) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_text(BSTR text) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_specified(VARIANT_BOOL* specified) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_definition(IXMLDOMNode** definition) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_nodeTypedValue(VARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_nodeTypedValue(VARIANT value) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_dataType(VARIANT* name) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_dataType(BSTR name) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_xml(BSTR* xml) = 0;
  virtual HRESULT STDMETHODCALLTYPE transformNode(IXMLDOMNode* stylesheet, BSTR* xml) = 0;
  virtual HRESULT STDMETHODCALLTYPE selectNodes(BSTR query, IXMLDOMNodeList** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE selectSingleNode(BSTR query, IXMLDOMNode** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_parsed(VARIANT_BOOL* parsed) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_namespaceURI(BSTR* uri) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_prefix(BSTR* prefix) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_baseName(BSTR* name) = 0;
  virtual HRESULT STDMETHODCALLTYPE transformNodeToObject(IXMLDOMNode* stylesheet,
                                                          VARIANT output) = 0;
};

DEFINE_GUID(IID_IXMLDOMDocument, 0x2933BF81, 0x7B36, 0x11D2, 0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98,
            0x3E, 0x60);
struct IXMLDOMDocument : IXMLDOMNode {
  virtual HRESULT STDMETHODCALLTYPE get_doctype(IXMLDOMDocumentType** doctype) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_implementation(IXMLDOMImplementation** implementation) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_documentElement(IXMLDOMElement** element) = 0;
  virtual HRESULT STDMETHODCALLTYPE putref_documentElement(IXMLDOMElement* element) = 0;
  virtual HRESULT STDMETHODCALLTYPE createElement(BSTR name, IXMLDOMElement** element) = 0;
  virtual HRESULT STDMETHODCALLTYPE createDocumentFragment(IXMLDOMDocumentFragment** fragment) = 0;
  virtual HRESULT STDMETHODCALLTYPE createTextNode(BSTR data, IXMLDOMText** text) = 0;
  virtual HRESULT STDMETHODCALLTYPE createComment(BSTR data, IXMLDOMComment** comment) = 0;
  virtual HRESULT STDMETHODCALLTYPE createCDATASection(BSTR data,
                                                       IXMLDOMCDATASection** section) = 0;
  virtual HRESULT STDMETHODCALLTYPE createProcessingInstruction(
      BSTR target, BSTR data, IXMLDOMProcessingInstruction** instruction) = 0;
  virtual HRESULT STDMETHODCALLTYPE createAttribute(BSTR name, IXMLDOMAttribute** attribute) = 0;
  virtual HRESULT STDMETHODCALLTYPE createEntityReference(BSTR name,
                                                          IXMLDOMEntityReference** reference) = 0;
  virtual HRESULT STDMETHODCALLTYPE getElementsByTagName(BSTR name, IXMLDOMNodeList** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE createNode(VARIANT type, BSTR name, BSTR namespaceUri,
                                               IXMLDOMNode** node) = 0;
  virtual HRESULT STDMETHODCALLTYPE nodeFromID(BSTR id, IXMLDOMNode** node) = 0;
  virtual HRESULT STDMETHODCALLTYPE load(VARIANT source, VARIANT_BOOL* success) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_readyState(LONG* state) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_parseError(IXMLDOMParseError** error) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_url(BSTR* url) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_async(VARIANT_BOOL* isAsync) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_async(VARIANT_BOOL isAsync) = 0;
  virtual HRESULT STDMETHODCALLTYPE abort() = 0;
  virtual HRESULT STDMETHODCALLTYPE loadXML(BSTR xml, VARIANT_BOOL* success) = 0;
  virtual HRESULT STDMETHODCALLTYPE save(VARIANT destination) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_validateOnParse(VARIANT_BOOL* validating) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_validateOnParse(VARIANT_BOOL validating) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_resolveExternals(VARIANT_BOOL* resolving) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_resolveExternals(VARIANT_BOOL resolving) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_preserveWhiteSpace(VARIANT_BOOL* preserving) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_preserveWhiteSpace(VARIANT_BOOL preserving) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_onreadystatechange(VARIANT sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_ondataavailable(VARIANT sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_ontransformnode(VARIANT sink) = 0;
};

DEFINE_GUID(IID_IXMLDOMDocument2, 0x2933BF95, 0x7B36, 0x11D2, 0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98,
            0x3E, 0x60);
struct IXMLDOMDocument2 : IXMLDOMDocument {
  virtual HRESULT STDMETHODCALLTYPE get_namespaces(IXMLDOMSchemaCollection** namespaces) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_schemas(VARIANT* schemas) = 0;
  virtual HRESULT STDMETHODCALLTYPE putref_schemas(VARIANT schemas) = 0;
  virtual HRESULT STDMETHODCALLTYPE validate(IXMLDOMParseError** error) = 0;
  virtual HRESULT STDMETHODCALLTYPE setProperty(BSTR name, VARIANT value) = 0;
  virtual HRESULT STDMETHODCALLTYPE getProperty(BSTR name, VARIANT* value) = 0;
};

DEFINE_GUID(IID_IXMLDOMNodeList, 0x2933BF82, 0x7B36, 0x11D2, 0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98,
            0x3E, 0x60);
struct IXMLDOMNodeList : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE get_item(LONG index, IXMLDOMNode** item) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_length(LONG* length) = 0;
  virtual HRESULT STDMETHODCALLTYPE nextNode(IXMLDOMNode** item) = 0;
  virtual HRESULT STDMETHODCALLTYPE reset() = 0;
  virtual HRESULT STDMETHODCALLTYPE get__newEnum(IUnknown** enumerator) = 0;
};

DEFINE_GUID(IID_IXMLDOMNamedNodeMap, 0x2933BF83, 0x7B36, 0x11D2, 0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98,
            0x3E, 0x60);
struct IXMLDOMNamedNodeMap : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE getNamedItem(BSTR name, IXMLDOMNode** item) = 0;
  virtual HRESULT STDMETHODCALLTYPE setNamedItem(IXMLDOMNode* item, IXMLDOMNode** set) = 0;
  virtual HRESULT STDMETHODCALLTYPE removeNamedItem(BSTR name, IXMLDOMNode** item) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_item(LONG index, IXMLDOMNode** item) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_length(LONG* length) = 0;
  virtual HRESULT STDMETHODCALLTYPE getQualifiedItem(BSTR baseName, BSTR namespaceUri,
                                                     IXMLDOMNode** item) = 0;
  virtual HRESULT STDMETHODCALLTYPE removeQualifiedItem(BSTR baseName, BSTR namespaceUri,
                                                        IXMLDOMNode** item) = 0;
  virtual HRESULT STDMETHODCALLTYPE nextNode(IXMLDOMNode** item) = 0;
  virtual HRESULT STDMETHODCALLTYPE reset() = 0;
  virtual HRESULT STDMETHODCALLTYPE get__newEnum(IUnknown** enumerator) = 0;
};

DEFINE_GUID(IID_IXMLDOMCharacterData, 0x2933BF84, 0x7B36, 0x11D2, 0xB2, 0x0E, 0x00, 0xC0, 0x4F,
            0x98, 0x3E, 0x60);
struct IXMLDOMCharacterData : IXMLDOMNode {
  virtual HRESULT STDMETHODCALLTYPE get_data(BSTR* data) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_data(BSTR data) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_length(LONG* length) = 0;
  virtual HRESULT STDMETHODCALLTYPE substringData(LONG offset, LONG count, BSTR* data) = 0;
  virtual HRESULT STDMETHODCALLTYPE appendData(BSTR data) = 0;
  virtual HRESULT STDMETHODCALLTYPE insertData(LONG offset, BSTR data) = 0;
  virtual HRESULT STDMETHODCALLTYPE deleteData(LONG offset, LONG count) = 0;
  virtual HRESULT STDMETHODCALLTYPE replaceData(LONG offset, LONG count, BSTR data) = 0;
};

DEFINE_GUID(IID_IXMLDOMAttribute, 0x2933BF85, 0x7B36, 0x11D2, 0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98,
            0x3E, 0x60);
struct IXMLDOMAttribute : IXMLDOMNode {
  virtual HRESULT STDMETHODCALLTYPE get_name(BSTR* name) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_value(VARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_value(VARIANT value) = 0;
};

DEFINE_GUID(IID_IXMLDOMElement, 0x2933BF86, 0x7B36, 0x11D2, 0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98,
            0x3E, 0x60);
struct IXMLDOMElement : IXMLDOMNode {
  virtual HRESULT STDMETHODCALLTYPE get_tagName(BSTR* name) = 0;
  virtual HRESULT STDMETHODCALLTYPE getAttribute(BSTR name, VARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE setAttribute(BSTR name, VARIANT value) = 0;
  virtual HRESULT STDMETHODCALLTYPE removeAttribute(BSTR name) = 0;
  virtual HRESULT STDMETHODCALLTYPE getAttributeNode(BSTR name, IXMLDOMAttribute** attribute) = 0;
  virtual HRESULT STDMETHODCALLTYPE setAttributeNode(IXMLDOMAttribute* attribute,
                                                     IXMLDOMAttribute** replaced) = 0;
  virtual HRESULT STDMETHODCALLTYPE removeAttributeNode(IXMLDOMAttribute* attribute,
                                                        IXMLDOMAttribute** removed) = 0;
  virtual HRESULT STDMETHODCALLTYPE getElementsByTagName(BSTR name, IXMLDOMNodeList** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE normalize() = 0;
};

DEFINE_GUID(IID_IXMLDOMText, 0x2933BF87, 0x7B36, 0x11D2, 0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E,
            0x60);
struct IXMLDOMText : IXMLDOMCharacterData {
  virtual HRESULT STDMETHODCALLTYPE splitText(LONG offset, IXMLDOMText** rest) = 0;
};

DEFINE_GUID(IID_IXMLDOMComment, 0x2933BF88, 0x7B36, 0x11D2, 0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98,
            0x3E, 0x60);
struct IXMLDOMComment : IXMLDOMCharacterData {};

DEFINE_GUID(IID_IXMLDOMProcessingInstruction, 0x2933BF89, 0x7B36, 0x11D2, 0xB2, 0x0E, 0x00, 0xC0,
            0x4F, 0x98, 0x3E, 0x60);
struct IXMLDOMProcessingInstruction : IXMLDOMNode {
  virtual HRESULT STDMETHODCALLTYPE get_target(BSTR* target) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_data(BSTR* data) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_data(BSTR data) = 0;
};

DEFINE_GUID(IID_IXMLDOMCDATASection, 0x2933BF8A, 0x7B36, 0x11D2, 0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98,
            0x3E, 0x60);
struct IXMLDOMCDATASection : IXMLDOMText {};

DEFINE_GUID(IID_IXMLDOMParseError, 0x3EFAA426, 0x272F, 0x11D2, 0x83, 0x6F, 0x00, 0x00, 0xF8, 0x7A,
            0x77, 0x82);
struct IXMLDOMParseError : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE get_errorCode(LONG* code) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_url(BSTR* url) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_reason(BSTR* reason) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_srcText(BSTR* text) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_line(LONG* line) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_linepos(LONG* position) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_filepos(LONG* position) = 0;
};

#pragma GCC diagnostic pop
