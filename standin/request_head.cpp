#include "standin/request_head.h"

#include <algorithm>

#include "standin/text.h"

namespace velandoc::standin {
namespace {

constexpr std::size_t kLongestHead = 256 * 1024;

// The length of the head in `bytes`, its empty line included; 0 while it is incomplete.
std::size_t HeadLength(std::string_view bytes) {
  const std::size_t proper = bytes.find("\r\n\r\n");
  const std::size_t bare = bytes.find("\n\n");
  if (bare != std::string_view::npos && (proper == std::string_view::npos || bare < proper))
    return bare + 2;
  return proper == std::string_view::npos ? 0 : proper + 4;
}

std::string_view WithoutPort(std::string_view authority) {
  if (!authority.empty() && authority.front() == '[')
    return authority.substr(0, authority.find(']') + 1);
  return authority.substr(0, authority.find(':'));
}

bool SplitRequestLine(std::string_view line, Request& request) {
  const std::size_t first = line.find(' ');
  const std::size_t last = line.rfind(' ');
  if (first == std::string_view::npos || first == last) return false;
  request.method = line.substr(0, first);
  request.target = line.substr(first + 1, last - first - 1);
  request.version = line.substr(last + 1);
  return !request.method.empty() && !request.target.empty() &&
         request.target.find(' ') == std::string::npos &&
         (request.version == "HTTP/1.1" || request.version == "HTTP/1.0");
}

bool SplitHeader(std::string_view line, Request& request) {
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos || colon == 0) return false;
  const std::string_view name = line.substr(0, colon);
  if (name.find_first_of(" \t") != std::string_view::npos) return false;
  request.headers.push_back({std::string(name), std::string(Trim(line.substr(colon + 1)))});
  return true;
}

void SplitTarget(Request& request) {
  const std::string_view target = request.target;
  std::string_view host;
  if (const std::string* header = request.Find("Host")) host = WithoutPort(*header);
  if (request.method == "CONNECT") {
    host = WithoutPort(target);
    request.proxy = true;
  } else if (const std::size_t scheme = target.find("://");
             scheme != std::string_view::npos && target.front() != '/') {
    const std::string_view rest = target.substr(scheme + 3);
    const std::size_t end = std::min(rest.find_first_of("/?"), rest.size());
    const std::string_view authority = rest.substr(0, end);
    host = WithoutPort(authority.substr(authority.rfind('@') + 1));
    // A bare authority, or one with just a query, means the root.
    if (rest.substr(end).starts_with('/')) {
      request.pathAndQuery = rest.substr(end);
    } else {
      request.pathAndQuery.assign(1, '/');
      request.pathAndQuery += rest.substr(end);
    }
    request.proxy = true;
  } else {
    request.pathAndQuery = target;
  }
  request.path = request.pathAndQuery.substr(0, request.pathAndQuery.find('?'));
  request.host = LowerAscii(host);
}

bool Split(Request& request) {
  std::string_view rest = request.head;
  bool isFirst = true;
  for (;;) {
    const std::size_t end = rest.find("\r\n");
    if (end == std::string_view::npos) return false;
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end + 2);
    if (line.empty()) break;
    if (line.find_first_of("\r\n") != std::string_view::npos) return false;
    if (!(isFirst ? SplitRequestLine(line, request) : SplitHeader(line, request))) return false;
    isFirst = false;
  }
  if (isFirst || !rest.empty()) return false;
  SplitTarget(request);
  return true;
}

}  // namespace

HeadResult ReadHead(InputBuffer& input, Request& request) {
  for (;;) {
    const std::string_view waiting = input.Waiting();
    if (const std::size_t length = HeadLength(waiting); length > 0) {
      request.head = waiting.substr(0, length);
      input.Take(length);
      return Split(request) ? HeadResult::kComplete : HeadResult::kMalformed;
    }
    // Something else than HTTP, a TLS greeting say, never sends the empty line that ends a head.
    const bool isText = waiting.empty() || (waiting.front() > 0x20 && waiting.front() < 0x7f);
    if (!isText) {
      request.head = waiting;
      return HeadResult::kMalformed;
    }
    if (waiting.size() > kLongestHead) {
      request.head = waiting;
      return HeadResult::kTooLong;
    }
    if (!input.Fill()) {
      request.head = input.Waiting();
      return request.head.empty() ? HeadResult::kEnd : HeadResult::kMalformed;
    }
  }
}

}  // namespace velandoc::standin
