#include "hosts/command/server_word.h"

#include <algorithm>
#include <charconv>

#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"
#include "platform/dom.h"

namespace velandoc {
namespace {

constexpr std::size_t kWordLimit = 300;  // bytes before what is cut off is marked
constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kRpcTitle = "vermeer RPC packet";  // of every RPC page: it says nothing

std::string_view Trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

/// One line, visible, not too long.
std::string OneLine(std::string_view text) {
  std::string line;
  for (const char c : Trimmed(text)) {
    const bool blank = kBlanks.find(c) != kBlanks.npos;
    if (!blank) {
      line.push_back(c);
    } else if (line.empty() || line.back() != ' ') {
      line.push_back(' ');
    }
  }
  if (line.size() > kWordLimit) {
    std::size_t end = kWordLimit;
    // Not within a character.
    while (end > 0 && (static_cast<unsigned char>(line[end]) & 0xC0) == 0x80) --end;
    line.resize(end);
    line += "...";
  }
  return VisibleText(line);
}

/// Bytes of a page, which need not be UTF-8: else they count as Latin-1.
std::string AsUtf8(std::string_view bytes) {
  if (IsUtf8(bytes)) return std::string(bytes);
  WideString text;
  for (const char c : bytes) text.push_back(static_cast<OLECHAR>(static_cast<unsigned char>(c)));
  return Utf8FromWide(text);
}

/// Takes the tags out and the decimal references in. A reference below 256 is a byte, because RPC
/// pages carry UTF-8 in one reference a byte; a larger one is a character.
std::string PlainText(std::string_view html) {
  std::string text;
  for (std::size_t at = 0; at < html.size(); ++at) {
    if (html[at] == '<') {
      const std::size_t end = html.find('>', at);
      if (end == html.npos) break;
      at = end;
      continue;
    }
    unsigned number = 0;
    const char* digits = html.data() + at + 2;
    const char* last = html.data() + html.size();
    if (html.substr(at).starts_with("&#")) {
      const auto [end, problem] = std::from_chars(digits, last, number);
      if (problem == std::errc() && end != last && *end == ';' && number <= 0xFFFF) {
        if (number < 0x100) {
          text.push_back(static_cast<char>(number));
        } else {
          text += Utf8FromWide(WideString(1, static_cast<OLECHAR>(number)));
        }
        at = static_cast<std::size_t>(end - html.data());
        continue;
      }
    }
    text.push_back(html[at]);
  }
  constexpr std::pair<std::string_view, char> kNamed[] = {
      {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&amp;", '&'}};
  for (const auto& [name, character] : kNamed) {
    for (std::size_t at = 0; (at = text.find(name, at)) != text.npos; ++at) {
      text.replace(at, name.size(), 1, character);
    }
  }
  return AsUtf8(text);
}

/// A page's title, whatever the case of its tags.
std::string FindTitle(std::string_view page) {
  std::string lower(page);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  const std::size_t tag = lower.find("<title");
  if (tag == lower.npos) return {};
  const std::size_t begin = lower.find('>', tag);
  const std::size_t end = lower.find("</title", tag);
  if (begin == lower.npos || end == lower.npos || end < begin) return {};
  return PlainText(page.substr(begin + 1, end - begin - 1));
}

ComPtr<IXMLDOMDocument2> Load(std::string_view answer) {
  ComPtr<IXMLDOMDocument2> document;
  if (FAILED(CreateDomDocument(document))) return nullptr;
  CheckResult(document->put_async(VARIANT_FALSE));
  VARIANT_BOOL parsed = VARIANT_FALSE;
  const HRESULT loaded = document->loadXML(Bstr(WideFromUtf8(answer)).Get(), &parsed);
  if (FAILED(loaded) || parsed == VARIANT_FALSE) return nullptr;
  return document;
}

std::string ElementText(const ComPtr<IXMLDOMDocument2>& document, std::string_view name) {
  if (!document) return {};
  const WideString xpath = OLESTR("//*[local-name()='") + WideFromUtf8(name) + OLESTR("']");
  const ComPtr<IXMLDOMNode> node = SelectSingleNode(document.Get(), xpath);
  if (!node) return {};
  return std::string(Trimmed(Utf8FromWide(GetNodeText(node.Get()))));
}

bool LooksLikeXml(std::string_view answer) {
  answer = Trimmed(answer);
  // A byte order mark may stand in front.
  if (answer.starts_with("\xEF\xBB\xBF")) answer.remove_prefix(3);
  return answer.starts_with("<?xml") || answer.find("Envelope") != answer.npos;
}

std::string WithoutMark(std::string_view answer) {
  if (answer.starts_with("\xEF\xBB\xBF")) answer.remove_prefix(3);
  return std::string(answer);
}

/// What stands behind "msg=", up to the next item or the end of the list. A message may hold markup
/// and run over several lines.
std::string FindRpcMessage(std::string_view page) {
  constexpr std::string_view kMessage = "<li>msg=";
  const std::size_t at = page.find(kMessage);
  if (at == page.npos) return {};
  std::string_view rest = page.substr(at + kMessage.size());
  rest = rest.substr(0, std::min({rest.find("<li>"), rest.find("</ul>"), rest.find("</body>")}));
  return PlainText(rest);
}

}  // namespace

ComPtr<IXMLDOMDocument2> LoadAnswer(std::string_view answer) {
  if (!LooksLikeXml(answer)) return nullptr;
  return Load(WithoutMark(Trimmed(answer)));
}

std::string FindElementText(std::string_view answer, std::string_view name) try {
  return ElementText(LoadAnswer(answer), name);
} catch (const _com_error&) {
  return {};
}

std::string FindServerWord(std::string_view answer) {
  if (const std::string message = FindRpcMessage(answer); !message.empty()) return OneLine(message);
  if (LooksLikeXml(answer)) {
    const std::string detail = FindElementText(answer, "errorstring");
    return OneLine(detail.empty() ? FindElementText(answer, "faultstring") : detail);
  }
  const std::string_view text = Trimmed(answer);
  if (text.starts_with('<')) {
    const std::string title = OneLine(FindTitle(text));
    return title == kRpcTitle ? std::string() : title;
  }
  return OneLine(AsUtf8(text.substr(0, text.find_first_of("\r\n"))));
}

bool IsFault(std::string_view answer) { return !FindElementText(answer, "faultstring").empty(); }

UpdateVerdict FindUpdateVerdict(std::string_view answer) {
  UpdateVerdict verdict;
  verdict.code = OneLine(FindElementText(answer, "ErrorCode"));
  if (verdict.code.find_first_not_of("0x") == verdict.code.npos) return {};
  verdict.refused = true;
  verdict.text = OneLine(FindElementText(answer, "ErrorText"));
  return verdict;
}

}  // namespace velandoc
