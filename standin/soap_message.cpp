#include "standin/soap_message.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <climits>
#include <memory>

#include "standin/text.h"

namespace velandoc::standin {
namespace {

constexpr std::string_view kEnvelopeNamespace = "http://schemas.xmlsoap.org/soap/envelope/";

struct FreeDocument {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};

std::string_view View(const xmlChar* text) {
  return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

std::string_view NamespaceOf(const xmlNode* node) {
  return node->ns ? View(node->ns->href) : std::string_view();
}

bool IsSoap(const xmlNode* node, std::string_view name) {
  return node && View(node->name) == name && NamespaceOf(node) == kEnvelopeNamespace;
}

std::string TextOf(xmlNode* node) {
  xmlChar* content = xmlNodeGetContent(node);
  std::string text(View(content));
  xmlFree(content);
  return text;
}

std::string NameOf(const xmlAttr* attribute) {
  std::string name;
  if (attribute->ns && attribute->ns->prefix) {
    name = View(attribute->ns->prefix);
    name += ':';
  }
  return name += View(attribute->name);
}

// The parser bounds the depth.
XmlElement Read(xmlNode* node) {
  XmlElement element;
  element.name = View(node->name);
  element.elementNamespace = NamespaceOf(node);
  for (xmlAttr* attribute = node->properties; attribute; attribute = attribute->next) {
    xmlChar* value = xmlNodeListGetString(node->doc, attribute->children, 1);
    element.attributes.emplace_back(NameOf(attribute), View(value));
    xmlFree(value);
  }
  for (xmlNode* child = xmlFirstElementChild(node); child; child = xmlNextElementSibling(child))
    element.children.push_back(Read(child));
  element.text = TextOf(node);
  return element;
}

xmlNode* FindBody(xmlNode* envelope) {
  for (xmlNode* child = xmlFirstElementChild(envelope); child; child = xmlNextElementSibling(child))
    if (IsSoap(child, "Body")) return child;
  return nullptr;
}

Response Envelope(int status, std::string_view content) {
  std::string xml = "<?xml version=\"1.0\" encoding=\"utf-8\"?><soap:Envelope xmlns:soap=\"";
  xml += kEnvelopeNamespace;
  xml +=
      "\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\""
      " xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\"><soap:Body>";
  xml += content;
  xml += "</soap:Body></soap:Envelope>";
  return TextAnswer(status, "text/xml; charset=utf-8", std::move(xml));
}

Response Fault(std::string_view code, std::string_view text, std::string_view detail, int status) {
  std::string fault = "<soap:Fault><faultcode>soap:";
  fault += code;
  fault += "</faultcode><faultstring>";
  fault += EscapeMarkup(text);
  fault += "</faultstring>";
  fault += detail;
  fault += "</soap:Fault>";
  return Envelope(status, fault);
}

}  // namespace

const std::string* XmlElement::Attribute(std::string_view wanted) const {
  for (const auto& [attributeName, value] : attributes)
    if (attributeName == wanted) return &value;
  return nullptr;
}

std::optional<SoapCall> ParseSoapCall(std::string_view xml, std::string& problem) {
  const int size = xml.size() > INT_MAX ? INT_MAX : static_cast<int>(xml.size());
  const std::unique_ptr<xmlDoc, FreeDocument> document(
      xmlReadMemory(xml.data(), size, nullptr, nullptr,
                    XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
  if (!document) {
    problem = "The request is not well-formed XML.";
    return std::nullopt;
  }
  // SOAP has no document types; without them there are no entities that could grow.
  if (document->intSubset) {
    problem = "The request has a document type.";
    return std::nullopt;
  }
  xmlNode* envelope = xmlDocGetRootElement(document.get());
  xmlNode* body = IsSoap(envelope, "Envelope") ? FindBody(envelope) : nullptr;
  if (!body) {
    problem = "The request is no SOAP 1.1 envelope with a body.";
    return std::nullopt;
  }
  xmlNode* method = xmlFirstElementChild(body);
  if (!method || xmlNextElementSibling(method)) {
    problem = "The body of the envelope holds not just one call.";
    return std::nullopt;
  }
  SoapCall call;
  call.serviceNamespace = NamespaceOf(method);
  call.method = View(method->name);
  for (xmlNode* child = xmlFirstElementChild(method); child; child = xmlNextElementSibling(child)) {
    if (NamespaceOf(child) != call.serviceNamespace) {
      problem = "A parameter of the call stands in another namespace.";
      return std::nullopt;
    }
    call.parameters.push_back(Read(child));
  }
  return call;
}

Response SoapAnswer(std::string_view content) { return Envelope(200, content); }

std::string XmlAttribute(std::string_view name, std::string_view value) {
  std::string attribute(" ");
  attribute += name;
  attribute += "=\"";
  for (const char c : EscapeMarkup(value)) {
    if (c == '\t' || c == '\n' || c == '\r') {
      attribute += "&#" + std::to_string(c) + ";";
    } else {
      attribute += c;
    }
  }
  return attribute += '"';
}

Response SoapFault(std::string_view code, std::string_view text, int status) {
  return Fault(code, text, "<detail />", status);
}

Response ServiceFault(std::string_view text, std::string_view errorCode) {
  constexpr std::string_view kNamespace =
      " xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\">";
  std::string detail = "<detail><errorstring";
  detail += kNamespace;
  detail += EscapeMarkup(text);
  detail += "</errorstring>";
  if (!errorCode.empty()) {
    detail += "<errorcode";
    detail += kNamespace;
    detail += errorCode;
    detail += "</errorcode>";
  }
  detail += "</detail>";
  return Fault(
      "Server",
      "Exception of type 'Microsoft.SharePoint.SoapServer.SoapServerException' was thrown.", detail,
      500);
}

}  // namespace velandoc::standin
