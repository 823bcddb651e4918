#include "platform/posix/msxml/serializer.h"

#include <array>
#include <list>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/posix/msxml/node_text.h"

namespace velandoc::dom {
namespace {

using std::string_view;

/// Which characters are written as references, by character: in text, and in an attribute's value.
enum Special : unsigned char { kInText = 1, kInValue = 2 };

constexpr std::array<unsigned char, 256> MakeSpecials() {
  std::array<unsigned char, 256> specials{};
  // A parser turns a raw carriage return into a line feed, and in an attribute every white space
  // into a blank.
  for (const char c : string_view("&<>\r")) specials[static_cast<unsigned char>(c)] |= kInText;
  for (const char c : string_view("&<>\"\t\n\r")) {
    specials[static_cast<unsigned char>(c)] |= kInValue;
  }
  return specials;
}
constexpr std::array<unsigned char, 256> kSpecials = MakeSpecials();

string_view Reference(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\t':
      return "&#x9;";
    case '\n':
      return "&#xA;";
    default:
      return "&#xD;";
  }
}

void AppendEscaped(std::string& out, string_view text, Special special) {
  const char* begin = text.data();
  const char* const end = begin + text.size();
  for (const char* at = begin; at != end; ++at) {
    if ((kSpecials[static_cast<unsigned char>(*at)] & special) == 0) continue;
    out.append(begin, at);
    out += Reference(*at);
    begin = at + 1;
  }
  out.append(begin, end);
}

void AppendText(std::string& out, string_view text) { AppendEscaped(out, text, kInText); }
void AppendValue(std::string& out, string_view text) { AppendEscaped(out, text, kInValue); }

/// A section cannot hold its own end: it is cut in two there.
void AppendSection(std::string& out, string_view text) {
  out += "<![CDATA[";
  for (std::size_t at = text.find("]]>"); at != string_view::npos; at = text.find("]]>")) {
    out += text.substr(0, at + 2);
    out += "]]><![CDATA[";
    text.remove_prefix(at + 2);
  }
  out += text;
  out += "]]>";
}

/// `version="1.0" encoding="utf-8" standalone="yes"` without its middle.
string_view WithoutEncoding(string_view declaration, std::string& storage) {
  const std::size_t at = declaration.find("encoding");
  if (at == string_view::npos) return declaration;
  const std::size_t open = declaration.find_first_of("\"'", at);
  if (open == string_view::npos) return declaration;
  const std::size_t close = declaration.find(declaration[open], open + 1);
  if (close == string_view::npos) return declaration;
  storage = declaration.substr(0, at);
  storage += declaration.substr(close + 1);
  while (!storage.empty() && IsBlank(storage.back())) storage.pop_back();
  return storage;
}

class Serializer {
 public:
  explicit Serializer(std::string& out) : m_out(out) {}

  void Write(xmlNode* root) {
    m_root = root;
    m_endsLines = root->type == XML_DOCUMENT_NODE;
    m_out.reserve(kUsualSize);
    xmlNode* node = root;
    while (true) {
      const bool isOpen = Begin(node);
      if (isOpen) {
        node = node->children;
        continue;
      }
      while (true) {
        EndTopLevel(node);
        if (node == root) return;
        if (node->next != nullptr) break;
        node = node->parent;
        End(node);
      }
      node = node->next;
    }
  }

 private:
  struct Binding {
    string_view prefix;
    string_view uri;
    const xmlNode* element;
  };

  /// True if the node's children come next, and then its end.
  bool Begin(xmlNode* node) {
    switch (node->type) {
      case XML_ELEMENT_NODE:
        BeginElement(node);
        return node->children != nullptr;
      case XML_DOCUMENT_NODE:
        return node->children != nullptr;
      case XML_TEXT_NODE:
        AppendText(m_out, View(node->content));
        return false;
      case XML_CDATA_SECTION_NODE:
        AppendSection(m_out, View(node->content));
        return false;
      case XML_COMMENT_NODE:
        m_out += "<!--";
        m_out += View(node->content);
        m_out += "-->";
        return false;
      case XML_PI_NODE:
        WriteInstruction(node);
        return false;
      default:
        return false;
    }
  }

  void End(const xmlNode* node) {
    if (node->type != XML_ELEMENT_NODE) return;
    m_out += "</";
    WriteName(node->ns != nullptr ? View(node->ns->prefix) : string_view(), View(node->name));
    m_out += '>';
    LeaveScope(node);
  }

  void EndTopLevel(const xmlNode* node) {
    const bool isTopLevel = node->parent != nullptr && node->parent->type == XML_DOCUMENT_NODE;
    if (m_endsLines && isTopLevel) m_out += "\r\n";
  }

  void LeaveScope(const xmlNode* element) {
    while (!m_scope.empty() && m_scope.back().element == element) m_scope.pop_back();
  }

  void WriteInstruction(const xmlNode* node) {
    std::string storage;
    string_view content = View(node->content);
    if (View(node->name) == "xml") content = WithoutEncoding(content, storage);
    m_out += "<?";
    m_out += View(node->name);
    if (!content.empty()) m_out += ' ';
    m_out += content;
    m_out += "?>";
  }

  void WriteName(string_view prefix, string_view name) {
    m_out += prefix;
    if (!prefix.empty()) m_out += ':';
    m_out += name;
  }

  void BeginElement(const xmlNode* element) {
    const string_view prefix = element->ns != nullptr ? View(element->ns->prefix) : string_view();
    const string_view uri = element->ns != nullptr ? View(element->ns->href) : string_view();
    m_out += '<';
    WriteName(prefix, View(element->name));
    for (const xmlNs* declared = element->nsDef; declared != nullptr; declared = declared->next) {
      if (View(declared->prefix) == prefix && View(declared->href) != uri) continue;
      // A prefix cannot be bound to no namespace.
      if (declared->prefix != nullptr && View(declared->href).empty()) continue;
      Declare(element, View(declared->prefix), View(declared->href));
    }
    if (!IsInParentsNamespace(element) && UriOf(prefix) != uri) Declare(element, prefix, uri);
    for (const xmlAttr* attribute = element->properties; attribute != nullptr;
         attribute = attribute->next) {
      WriteAttribute(element, attribute);
    }
    if (element->children != nullptr) {
      m_out += '>';
    } else {
      m_out += "/>";
      LeaveScope(element);
    }
  }

  /// True if the parent's tag, which is written, has seen to this element's namespace as well.
  bool IsInParentsNamespace(const xmlNode* element) const {
    return element != m_root && element->nsDef == nullptr &&
           element->parent->type == XML_ELEMENT_NODE && element->parent->ns == element->ns;
  }

  void WriteAttribute(const xmlNode* element, const xmlAttr* attribute) {
    string_view prefix;
    if (attribute->ns != nullptr) prefix = PrefixFor(element, *attribute->ns);
    std::string storage;
    const string_view value = AttributeValue(attribute, storage);
    m_out += ' ';
    WriteName(prefix, View(attribute->name));
    m_out += "=\"";
    AppendValue(m_out, value);
    m_out += '"';
  }

  /// A prefix that means `ns` here: its own if that is free or means it already, else another,
  /// declared if need be.
  string_view PrefixFor(const xmlNode* element, const xmlNs& ns) {
    const string_view own = View(ns.prefix);
    const string_view uri = View(ns.href);
    if (own == "xml") return own;
    if (!own.empty()) {
      const string_view bound = UriOf(own);
      if (bound == uri) return own;
      // A prefix that means something else may be the element's own: it is not declared anew.
      if (bound.empty()) {
        Declare(element, own, uri);
        return own;
      }
    }
    for (auto binding = m_scope.rbegin(); binding != m_scope.rend(); ++binding) {
      if (binding->uri == uri && !binding->prefix.empty() && UriOf(binding->prefix) == uri) {
        return binding->prefix;
      }
    }
    std::string made;
    do {
      made = "ns" + std::to_string(++m_madePrefixes);
    } while (!UriOf(made).empty());
    m_made.push_back(std::move(made));
    Declare(element, m_made.back(), uri);
    return m_made.back();
  }

  void Declare(const xmlNode* element, string_view prefix, string_view uri) {
    m_scope.push_back({prefix, uri, element});
    m_out += prefix.empty() ? " xmlns" : " xmlns:";
    m_out += prefix;
    m_out += "=\"";
    AppendValue(m_out, uri);
    m_out += '"';
  }

  /// The namespace in force for a prefix, empty for none.
  string_view UriOf(string_view prefix) const {
    if (prefix == "xml") return View(XML_XML_NAMESPACE);
    for (auto binding = m_scope.rbegin(); binding != m_scope.rend(); ++binding) {
      if (binding->prefix == prefix) return binding->uri;
    }
    return {};
  }

  static constexpr std::size_t kUsualSize = 512;

  std::string& m_out;
  const xmlNode* m_root = nullptr;
  bool m_endsLines = false;
  std::vector<Binding> m_scope;
  std::list<std::string> m_made;
  unsigned m_madePrefixes = 0;
};

}  // namespace

std::string Serialize(xmlNode* node) {
  std::string out;
  if (IsDeclaration(node)) {
    const xmlNs* declared = AsDeclaration(node);
    out = "xmlns";
    if (declared->prefix != nullptr) out += ':';
    out += View(declared->prefix);
    out += "=\"";
    AppendValue(out, View(declared->href));
    out += '"';
  } else if (node->type == XML_ATTRIBUTE_NODE) {
    const xmlAttr* attribute = AsAttribute(node);
    if (attribute->ns != nullptr && attribute->ns->prefix != nullptr) {
      out += View(attribute->ns->prefix);
      out += ':';
    }
    out += View(attribute->name);
    out += "=\"";
    std::string storage;
    AppendValue(out, AttributeValue(attribute, storage));
    out += '"';
  } else {
    Serializer(out).Write(node);
  }
  return out;
}

}  // namespace velandoc::dom
