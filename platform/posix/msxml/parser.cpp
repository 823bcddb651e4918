#include "platform/posix/msxml/parser.h"

#include <libxml/SAX2.h>
#include <libxml/parserInternals.h>

#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "platform/posix/msxml/blank_filter.h"
#include "platform/posix/msxml/node_slot.h"
#include "platform/posix/msxml/start_tag_limit.h"
#include "platform/posix/msxml/text_encoding.h"

namespace velandoc::dom {
namespace {

struct ParserDeleter {
  void operator()(xmlParserCtxt* parser) const {
    // The tree is not freed with its parser.
    xmlFreeDoc(parser->myDoc);
    xmlFreeParserCtxt(parser);
  }
};
using ParserOwner = std::unique_ptr<xmlParserCtxt, ParserDeleter>;

// MSXML's numbers for the failures that scripts commonly tell apart.
constexpr LONG kSyntaxError = MakeResult(0xC00CE553);
constexpr LONG kNoRoot = MakeResult(0xC00CE558);
constexpr LONG kTextBehindRoot = MakeResult(0xC00CE556);
constexpr LONG kTagMismatch = MakeResult(0xC00CE56D);
constexpr LONG kInvalidCharacter = MakeResult(0xC00CE508);
constexpr LONG kUndefinedEntity = MakeResult(0xC00CE002);
constexpr LONG kUndeclaredPrefix = MakeResult(0xC00CE00D);
constexpr LONG kDtdProhibited = MakeResult(0xC00CE584);
constexpr LONG kTooDeep = MakeResult(0xC00CE586);

struct CodeOfError {
  int libxml;
  LONG code;
};

constexpr CodeOfError kCodes[] = {
    {XML_ERR_DOCUMENT_EMPTY, kNoRoot},
    {XML_ERR_DOCUMENT_END, kTextBehindRoot},
    {XML_ERR_TAG_NAME_MISMATCH, kTagMismatch},
    {XML_ERR_INVALID_CHAR, kInvalidCharacter},
    {XML_ERR_UNDECLARED_ENTITY, kUndefinedEntity},
    {XML_WAR_UNDECLARED_ENTITY, kUndefinedEntity},
    {XML_NS_ERR_UNDEFINED_NAMESPACE, kUndeclaredPrefix},
};

LONG CodeOf(int error) {
  for (const CodeOfError& entry : kCodes) {
    if (entry.libxml == error) return entry.code;
  }
  return kSyntaxError;
}

/// What the callbacks work on.
struct State {
  ParseFailure& failure;
  BlankFilter blanks;
  int nodes = 0;
  // Of each open element, and their sum. What the parser's own counters count is not documented.
  std::vector<int> declarations{};
  int declarationsInForce = 0;
  bool isOutOfMemory = false;
};

State& StateOf(void* context) {
  return *static_cast<State*>(static_cast<xmlParserCtxt*>(context)->_private);
}

/// Remembers the first failure only: what follows are its consequences.
void Note(xmlParserCtxt* parser, LONG code, std::string_view reason) {
  ParseFailure& failure = StateOf(parser).failure;
  if (failure.code != 0) return;
  failure.code = code;
  try {
    failure.reason = reason;
  } catch (const std::bad_alloc&) {
    // The code says enough.
  }
  if (parser->input != nullptr) {
    failure.line = parser->input->line;
    failure.column = parser->input->col;
    failure.offset = static_cast<LONG>(xmlByteConsumed(parser));
  }
}

void Refuse(xmlParserCtxt* parser, LONG code, std::string_view reason) {
  Note(parser, code, reason);
  xmlStopParser(parser);
}

void CheckNames(xmlParserCtxt* parser) {
  if (xmlDictSize(parser->dict) > kMaxNames)
    Refuse(parser, kSyntaxError, "Too many different names.");
}

void CountNode(void* context) {
  if (++StateOf(context).nodes <= kMaxNodes) return;
  Refuse(static_cast<xmlParserCtxt*>(context), kSyntaxError, "Too many nodes.");
}

/// The type of the second parameter gains a "const" in newer releases of libxml2.
void OnError(void* context, auto* error) {
  // The text of a namespace's name is nobody's business: it need not be a URI that libxml2 approves
  // of.
  if (error->level < XML_ERR_ERROR || error->code == XML_WAR_NS_URI ||
      error->code == XML_WAR_NS_URI_RELATIVE) {
    return;
  }
  // Unlike the other errors of this domain these do not end the parse, and no flag tells them from
  // the two above.
  std::string_view reason = error->message != nullptr ? error->message : "";
  while (!reason.empty() && IsBlank(reason.back())) reason.remove_suffix(1);
  Note(static_cast<xmlParserCtxt*>(context), CodeOf(error->code), reason);
}

void OnDoctype(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
  Refuse(static_cast<xmlParserCtxt*>(context), kDtdProhibited, "DTD is prohibited.");
}

/// Runs a callback's work: an exception must not pass through libxml2.
template <class Work>
void Run(void* context, Work work) {
  try {
    work(StateOf(context).blanks);
  } catch (const std::bad_alloc&) {
    StateOf(context).isOutOfMemory = true;
    xmlStopParser(static_cast<xmlParserCtxt*>(context));
  }
}

/// White space behind a start tag separates nothing: it is noted only where a node goes before.
void NoteBlankBefore(xmlNode* node) {
  if (node != nullptr && node->prev != nullptr) AddNote(node, kBlankBefore);
}

/// The value of xml:space among a start tag's attributes, which come as name, prefix, namespace,
/// begin and end of value.
BlankFilter::Space SpaceOf(int attributes, const xmlChar** attribute) {
  for (int i = 0; i < attributes; ++i, attribute += 5) {
    if (View(attribute[1]) != "xml" || View(attribute[0]) != "space") continue;
    const std::string_view value(reinterpret_cast<const char*>(attribute[3]),
                                 static_cast<std::size_t>(attribute[4] - attribute[3]));
    return value == "preserve" ? BlankFilter::Space::kPreserve : BlankFilter::Space::kDefault;
  }
  return BlankFilter::Space::kInherited;
}

void OnStartElement(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
                    int declarations, const xmlChar** declaration, int attributes, int defaulted,
                    const xmlChar** attribute) {
  auto* parser = static_cast<xmlParserCtxt*>(context);
  State& state = StateOf(context);
  Run(context, [&](BlankFilter& blanks) {
    const bool isBlankBefore = blanks.EndText();
    blanks.BeginElement(SpaceOf(attributes, attribute));
    state.declarations.push_back(declarations);
    state.declarationsInForce += declarations;
    // libxml2 still makes an element that is refused. The parse ends after it.
    xmlSAX2StartElementNs(context, name, prefix, uri, declarations, declaration, attributes,
                          defaulted, attribute);
    if (isBlankBefore) NoteBlankBefore(parser->node);
  });
  if (state.declarations.size() > kMaxDepth) {
    Refuse(parser, kTooDeep, "Elements are nested too deep.");
  }
  if (state.declarationsInForce > kMaxNamespacesInScope) {
    Refuse(parser, kSyntaxError, "Too many namespace declarations are in force.");
  }
  CheckNames(parser);
  CountNode(context);
}

void OnEndElement(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri) {
  Run(context, [&](BlankFilter& blanks) {
    xmlNode* const element = static_cast<xmlParserCtxt*>(context)->node;
    if (blanks.EndText() && element != nullptr) AddNote(element, kBlankAtEnd);
    blanks.EndElement();
    State& state = StateOf(context);
    if (!state.declarations.empty()) {
      state.declarationsInForce -= state.declarations.back();
      state.declarations.pop_back();
    }
    xmlSAX2EndElementNs(context, name, prefix, uri);
  });
}

void OnCharacters(void* context, const xmlChar* text, int size) {
  const auto* parser = static_cast<xmlParserCtxt*>(context);
  // No documented interface tells a character reference from the character itself. What a reference
  // stands for does not lie in the input, and the input stands after its semicolon. The test
  // DomTest.WhiteSpaceThatStays fails with a libxml2 in which that is not so.
  const xmlParserInput* input = parser->input;
  const bool isReference = (text < input->base || text >= input->end) && input->cur > input->base &&
                           input->cur[-1] == ';';
  const std::string_view piece(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
  const auto lastChild = [parser] {
    return parser->node != nullptr ? parser->node->last : nullptr;
  };
  const xmlNode* const before = lastChild();
  Run(context, [&](BlankFilter& blanks) {
    std::string held;
    if (!blanks.Pass(piece, isReference, held)) return;
    if (!held.empty()) xmlSAX2Characters(context, XmlText(held), static_cast<int>(held.size()));
    xmlSAX2Characters(context, text, size);
  });
  // Most pieces of a text lengthen the node of the piece before.
  if (lastChild() != before) CountNode(context);
}

/// For markup that makes one node behind the others of its parent.
template <class Make>
void OnNode(void* context, Make make) {
  Run(context, [&](BlankFilter& blanks) {
    const bool isBlankBefore = blanks.EndText();
    make();
    const xmlNode* const parent = static_cast<xmlParserCtxt*>(context)->node;
    if (isBlankBefore && parent != nullptr) NoteBlankBefore(parent->last);
  });
  CountNode(context);
}

void OnSection(void* context, const xmlChar* text, int size) {
  // libxml2's own operation would join neighbouring sections.
  OnNode(context, [&] {
    auto* parser = static_cast<xmlParserCtxt*>(context);
    xmlNode* const section = xmlNewCDataBlock(parser->myDoc, text, size);
    if (section == nullptr) throw std::bad_alloc();
    LinkNode(parser->node, section, nullptr);
  });
}

void OnComment(void* context, const xmlChar* text) {
  OnNode(context, [&] { xmlSAX2Comment(context, text); });
}

void OnInstruction(void* context, const xmlChar* target, const xmlChar* data) {
  OnNode(context, [&] { xmlSAX2ProcessingInstruction(context, target, data); });
  CheckNames(static_cast<xmlParserCtxt*>(context));
}

ParserOwner MakeParser(const Utf8Text& text, State& state) {
  ParserOwner parser(xmlNewParserCtxt());
  if (!parser) throw std::bad_alloc();
  parser->_private = &state;
  parser->sax->internalSubset = OnDoctype;
  parser->sax->startElementNs = OnStartElement;
  parser->sax->endElementNs = OnEndElement;
  parser->sax->cdataBlock = OnSection;
  parser->sax->comment = OnComment;
  parser->sax->processingInstruction = OnInstruction;
  parser->sax->characters = OnCharacters;
  parser->sax->ignorableWhitespace = OnCharacters;
  parser->sax->serror = OnError;
  // HUGE lifts libxml2's limit of 10 MB to one text; the limits that it lifts besides are set anew
  // above.
  // Not COMPACT: a tree read with it must not be changed.
  xmlCtxtUseOptions(parser.get(), XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_IGNORE_ENC);
  // No table of xml:id attributes: nobody asks for it.
  parser->loadsubset |= XML_SKIP_IDS;

  // The parser reads the text where it lies, up to its terminating zero. Its buffers would copy it,
  // and the kind that does not copy loses its place in texts of more than 500 bytes (libxml2 2.9).
  xmlParserInput* input = xmlNewStringInputStream(parser.get(), XmlText(text.bytes.get()));
  if (input == nullptr) throw std::bad_alloc();
  if (inputPush(parser.get(), input) < 0) {
    xmlFreeInputStream(input);
    throw std::bad_alloc();
  }
  return parser;
}

/// MSXML shows an XML declaration as the document's first node, with the text as it was written.
void LinkDeclaration(xmlDoc* document, std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  constexpr std::string_view kBegin = "<?xml";
  if (!text.starts_with(kBegin) || text.size() == kBegin.size() || !IsBlank(text[kBegin.size()]))
    return;
  text = text.substr(kBegin.size(), text.find("?>") - kBegin.size());
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  xmlNode* node = xmlNewDocPI(document, XmlText("xml"), XmlText(std::string(text)));
  if (node == nullptr) throw std::bad_alloc();
  LinkNode(AsNode(document), node, document->children);
}

}  // namespace

XmlDocOwner Parse(std::u16string_view text, bool preserveWhiteSpace, ParseFailure& failure) {
  failure = {};
  Utf8Text utf8;
  if (!EncodeStrictly(text, utf8)) {
    failure.code = kInvalidCharacter;
    failure.reason = "The text holds an unpaired surrogate.";
    return nullptr;
  }
  if (utf8.size >= static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    failure.code = kSyntaxError;
    failure.reason = "The text is too long.";
    return nullptr;
  }
  if (HasOversizedStartTag(utf8.View())) {
    failure.code = kSyntaxError;
    failure.reason = "A start tag has too many attributes.";
    return nullptr;
  }

  State state = {failure, BlankFilter(preserveWhiteSpace)};
  const ParserOwner parser = MakeParser(utf8, state);
  xmlParseDocument(parser.get());
  if (state.isOutOfMemory || parser->errNo == XML_ERR_NO_MEMORY) throw std::bad_alloc();
  if (failure.code != 0) return nullptr;
  const xmlDoc* parsed = parser->myDoc;
  if (parser->wellFormed == 0 || parsed == nullptr || xmlDocGetRootElement(parsed) == nullptr) {
    Note(parser.get(), kSyntaxError, "The text is not XML.");
    return nullptr;
  }
  if (View(parsed->version) != "1.0") {
    Note(parser.get(), kSyntaxError, "The version of XML is not 1.0.");
    return nullptr;
  }
  XmlDocOwner document(std::exchange(parser->myDoc, nullptr));
  LinkDeclaration(document.get(), utf8.View());
  return document;
}

}  // namespace velandoc::dom
