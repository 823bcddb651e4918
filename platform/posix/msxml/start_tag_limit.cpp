#include "platform/posix/msxml/start_tag_limit.h"

namespace velandoc::dom {
namespace {

/// The number of quoted values in front of the ">" that ends a start tag, counted no further than
/// the limit.
std::size_t CountValues(std::string_view tag) {
  std::size_t count = 0;
  std::size_t at = 0;
  while (count <= kMaxAttributes) {
    at = tag.find_first_of("\"'>", at);
    if (at == std::string_view::npos || tag[at] == '>') break;
    const std::size_t close = tag.find(tag[at], at + 1);
    if (close == std::string_view::npos) break;
    ++count;
    at = close + 1;
  }
  return count;
}

/// Where the markup that begins at `at` with `<` and is no start tag ends, or `at` + 1.
std::size_t SkipMarkup(std::string_view xml, std::size_t at) {
  struct Kind {
    std::string_view begin;
    std::string_view end;
  };
  static constexpr Kind kinds[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};
  for (const Kind& kind : kinds) {
    if (xml.compare(at, kind.begin.size(), kind.begin) != 0) continue;
    const std::size_t end = xml.find(kind.end, at + kind.begin.size());
    return end == std::string_view::npos ? xml.size() : end + kind.end.size();
  }
  return at + 1;
}

}  // namespace

bool HasOversizedStartTag(std::string_view xml) {
  // The shortest attribute is ` a=""`, and no start tag holds a second "<": most tags are passed by
  // their length.
  constexpr std::size_t kSmallTag = 5 * kMaxAttributes;
  std::size_t at = xml.find('<');
  while (at != std::string_view::npos) {
    const bool isStartTag = at + 1 < xml.size() && xml[at + 1] != '!' && xml[at + 1] != '?';
    if (!isStartTag) {
      at = xml.find('<', SkipMarkup(xml, at));
      continue;
    }
    std::size_t next = xml.find('<', at + 1);
    const std::size_t size = (next == std::string_view::npos ? xml.size() : next) - at;
    if (size > kSmallTag && CountValues(xml.substr(at, size)) > kMaxAttributes) return true;
    at = next;
  }
  return false;
}

}  // namespace velandoc::dom
