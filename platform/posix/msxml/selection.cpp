#include "platform/posix/msxml/selection.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "platform/posix/msxml/node_name.h"

namespace velandoc::dom {
namespace {

/// Decodes XML's own five entities; false for any other reference, or a "<".
bool ReadValue(std::string_view raw, std::string& value) {
  struct Entity {
    std::string_view name;
    char character;
  };
  static constexpr Entity entities[] = {
      {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
  value.clear();
  if (raw.find('<') != std::string_view::npos) return false;
  while (true) {
    const std::size_t ampersand = raw.find('&');
    value += raw.substr(0, ampersand);
    if (ampersand == std::string_view::npos) return true;
    raw.remove_prefix(ampersand);
    const Entity* const entity =
        std::find_if(std::begin(entities), std::end(entities),
                     [raw](const Entity& known) { return raw.starts_with(known.name); });
    if (entity == std::end(entities)) return false;
    value += entity->character;
    raw.remove_prefix(entity->name.size());
  }
}

void DropMessage(void*, const char*, ...) {}

/// libxml2 writes what it has against some queries, a function with an unbound prefix for one, to
/// standard error, which is the program's and not ours. The setting is the thread's.
class SilencedMessages {
 public:
  SilencedMessages() : m_handler(xmlGenericError), m_context(xmlGenericErrorContext) {
    xmlSetGenericErrorFunc(nullptr, DropMessage);
  }
  ~SilencedMessages() { xmlSetGenericErrorFunc(m_context, m_handler); }
  SilencedMessages(const SilencedMessages&) = delete;
  SilencedMessages& operator=(const SilencedMessages&) = delete;

 private:
  xmlGenericErrorFunc m_handler;
  void* m_context;
};

/// Returns null if the query is malformed or its evaluation fails.
XPathObjectOwner Evaluate(xmlXPathContext* xpath, xmlNode* context, const std::string& query) {
  const XPathExpressionOwner expression(xmlXPathCtxtCompile(xpath, XmlText(query)));
  if (!expression) return nullptr;
  xpath->node = context;
  XPathObjectOwner result(xmlXPathCompiledEval(expression.get(), xpath));
  xpath->node = nullptr;
  return result;
}

void SkipBlanks(std::string_view& text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
}

}  // namespace

HRESULT Select(Tree& tree, xmlNode* context, const std::string& query,
               std::vector<xmlNode*>& found) {
  const SilencedMessages silenced;
  xmlXPathContext* const xpath = tree.XPathContext();
  const XPathObjectOwner result = Evaluate(xpath, context, query);
  if (!result) {
    const bool isOutOfMemory = xpath->lastError.code == XML_ERR_NO_MEMORY;
    // libxml2 does not say that a context can be used after a query that failed in it.
    tree.DropXPathContext();
    if (isOutOfMemory) throw std::bad_alloc();
    return E_FAIL;
  }
  if (result->type != XPATH_NODESET) return E_FAIL;
  xmlNodeSet* const nodes = result->nodesetval;
  if (nodes == nullptr) return S_OK;
  // A set has no particular order until it is sorted.
  xmlXPathNodeSetSort(nodes);
  found.reserve(static_cast<std::size_t>(nodes->nodeNr));
  for (int i = 0; i < nodes->nodeNr; ++i) {
    // XPath's namespace nodes are copies that die with the result; the DOM has no such nodes.
    if (!IsDeclaration(nodes->nodeTab[i])) found.push_back(nodes->nodeTab[i]);
  }
  return S_OK;
}

bool ReadSelectionNamespaces(const std::string& text, SelectionNamespaces& namespaces) {
  SelectionNamespaces read;
  std::string_view rest = text;
  SkipBlanks(rest);
  while (!rest.empty()) {
    const std::size_t equals = rest.find('=');
    if (equals == std::string_view::npos) return false;
    std::string_view written = rest.substr(0, equals);
    while (!written.empty() && IsBlank(written.back())) written.remove_suffix(1);
    QualifiedName name;
    if (!SplitName(std::string(written), name) || !name.IsDeclaration()) return false;
    rest.remove_prefix(equals + 1);
    SkipBlanks(rest);
    if (rest.empty() || (rest.front() != '"' && rest.front() != '\'')) return false;
    const std::size_t close = rest.find(rest.front(), 1);
    if (close == std::string_view::npos) return false;
    std::string uri;
    if (!ReadValue(rest.substr(1, close - 1), uri)) return false;
    rest.remove_prefix(close + 1);
    if (!rest.empty() && !IsBlank(rest.front())) return false;
    SkipBlanks(rest);
    const std::string prefix = name.prefix.empty() ? std::string() : name.local;
    // A prefix needs a namespace, and may be bound once.
    if (!prefix.empty() && uri.empty()) return false;
    for (const auto& [bound, other] : read) {
      if (bound == prefix) return false;
    }
    read.emplace_back(prefix, std::move(uri));
  }
  namespaces = std::move(read);
  return true;
}

}  // namespace velandoc::dom
