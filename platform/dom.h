// Short forms of the DOM calls that the readers and writers of XML make. A failing call raises
// `_com_error` with its result, and a null node `_com_error` with E_POINTER, unless told otherwise.
// Nodes are borrowed.
#pragma once

#include "platform/msxml.h"
#include "platform/owners.h"

namespace velandoc {

/// Makes an empty document, runs it and asks it for its interface. Raises nothing: the first
/// failure is the result, and `document` is then null.
HRESULT CreateDomDocument(ComPtr<IXMLDOMDocument2>& document);

/// Makes a node that belongs to `document` and stands nowhere in it. `type` is NODE_ELEMENT or
/// NODE_ATTRIBUTE.
ComPtr<IXMLDOMNode> CreateDomNode(IXMLDOMDocument2* document, DOMNodeType type, WideView name,
                                  WideView namespaceUri);

WideString GetNodeName(IXMLDOMNode* node);
/// Empty for a node in no namespace.
WideString GetNodeNamespace(IXMLDOMNode* node);
DOMNodeType GetNodeType(IXMLDOMNode* node);
WideString GetNodeText(IXMLDOMNode* node);
void PutNodeText(IXMLDOMNode* node, WideView text);
/// The node serialized, or the whole document.
WideString GetNodeXml(IXMLDOMNode* node);
/// Null if there is none.
ComPtr<IXMLDOMNode> GetFirstChild(IXMLDOMNode* node);
void AppendNode(IXMLDOMNode* parent, IXMLDOMNode* child);
/// The first match of an XPath, whose prefixes are the document's selection namespaces; null if
/// there is none.
ComPtr<IXMLDOMNode> SelectSingleNode(IXMLDOMNode* node, WideView xpath);

}  // namespace velandoc
