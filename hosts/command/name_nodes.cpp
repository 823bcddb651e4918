#include "hosts/command/name_nodes.h"

#include <algorithm>
#include <charconv>

#include "hosts/command/probe_url.h"
#include "hosts/command/visible_text.h"

namespace velandoc {
namespace {

constexpr unsigned kLargestPort = 65535;

std::optional<std::string> ReadNode(std::string_view url, NameNode& node) {
  if (auto problem = FindUrlProblem(url, "used")) return problem;
  const std::string shown = "'" + VisibleText(url) + "'";
  const std::size_t begin = url.find("://") + 3;
  const std::size_t end = std::min(url.find_first_of("/?#", begin), url.size());
  std::string_view authority = url.substr(begin, end - begin);
  const std::string_view rest = url.substr(end);
  if (authority.find('@') != authority.npos) {
    return shown + " names a user: type --user NAME in its place";
  }
  if (!rest.empty() && rest != "/" && rest != "/webhdfs/v1" && rest != "/webhdfs/v1/") {
    return shown + " has a path: the component asks a name node at /webhdfs/v1 and nowhere else";
  }
  node.url = url.substr(0, end);
  // A colon within brackets is an address's.
  const std::size_t bracket = authority.find(']');
  const std::size_t colon = authority.find(':', bracket == authority.npos ? 0 : bracket);
  if (colon == authority.npos) return std::nullopt;
  authority.remove_prefix(colon + 1);
  unsigned port = 0;
  const char* last = authority.data() + authority.size();
  const auto [stop, problem] = std::from_chars(authority.data(), last, port);
  if (problem != std::errc() || stop != last || port == 0 || port > kLargestPort) {
    return shown + " has no port that can be asked: type a number from 1 to 65535";
  }
  node.port = static_cast<unsigned short>(port);
  return std::nullopt;
}

}  // namespace

std::optional<std::string> ReadNameNodes(std::string_view text, std::vector<NameNode>& nodes) {
  while (true) {
    const std::string_view url = text.substr(0, text.find(','));
    NameNode node;
    if (auto problem = ReadNode(url, node)) return problem;
    nodes.push_back(std::move(node));
    if (url.size() == text.size()) return std::nullopt;
    text.remove_prefix(url.size() + 1);
  }
}

}  // namespace velandoc
