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

/// Makes a document of `xml`, the answer of a server. A document that cannot be made or loaded is
/// its failure as the result, E_FAIL for text that is no XML; raises where it cannot be switched to
/// loading at once. `document` is then as it was.
HRESULT LoadDomDocument(const Bstr& xml, ComPtr<IXMLDOMDocument2>& document);

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
/// Null if there is none.
ComPtr<IXMLDOMNode> GetNextSibling(IXMLDOMNode* node);
void AppendNode(IXMLDOMNode* parent, IXMLDOMNode* child);
/// The first match of an XPath, whose prefixes are the document's selection namespaces; null if
/// there is none.
ComPtr<IXMLDOMNode> SelectSingleNode(IXMLDOMNode* node, WideView xpath);
/// All matches.
ComPtr<IXMLDOMNodeList> SelectNodes(IXMLDOMNode* node, WideView xpath);
/// Binds the prefixes of XPath, in the form of declarations: `xmlns:a='...' xmlns:b='...'`. The
/// former ones go.
void SetSelectionNamespaces(IXMLDOMDocument2* document, WideView declarations);

/// Null for a node of a kind that has no attributes.
ComPtr<IXMLDOMNamedNodeMap> GetNodeAttributes(IXMLDOMNode* node);
/// Null if there is none of this qualified name.
ComPtr<IXMLDOMNode> GetNamedItem(IXMLDOMNamedNodeMap* map, WideView name);

LONG GetLength(IXMLDOMNodeList* list);
LONG GetLength(IXMLDOMNamedNodeMap* map);
/// Never null: raises E_POINTER for an index at which there is nothing.
ComPtr<IXMLDOMNode> GetItem(IXMLDOMNodeList* list, LONG index);
ComPtr<IXMLDOMNode> GetItem(IXMLDOMNamedNodeMap* map, LONG index);

}  // namespace velandoc
