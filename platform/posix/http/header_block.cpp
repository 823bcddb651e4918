#include "platform/posix/http/header_block.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/posix/http/ascii_case.h"

namespace velandoc::http {
namespace {

// By HTTP_QUERY number. Null: the number asks for something else than a header.
constexpr std::array<const char*, 71> kHeaderNames = {
    "MIME-Version",
    "Content-Type",
    "Content-Transfer-Encoding",
    "Content-ID",
    "Content-Description",
    "Content-Length",
    "Content-Language",
    "Allow",
    "Public",
    "Date",
    "Expires",
    "Last-Modified",
    "Message-ID",
    "URI",
    "Derived-From",
    "Cost",
    "Link",
    "Pragma",
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    "Connection",
    "Accept",
    "Accept-Charset",
    "Accept-Encoding",
    "Accept-Language",
    "Authorization",
    "Content-Encoding",
    "Forwarded",
    "From",
    "If-Modified-Since",
    "Location",
    "Orig-URI",
    "Referer",
    "Retry-After",
    "Server",
    "Title",
    "User-Agent",
    "WWW-Authenticate",
    "Proxy-Authenticate",
    "Accept-Ranges",
    "Set-Cookie",
    "Cookie",
    nullptr,
    "Refresh",
    "Content-Disposition",
    "Age",
    "Cache-Control",
    "Content-Base",
    "Content-Location",
    "Content-MD5",
    "Content-Range",
    "ETag",
    "Host",
    "If-Match",
    "If-None-Match",
    "If-Range",
    "If-Unmodified-Since",
    "Max-Forwards",
    "Proxy-Authorization",
    "Range",
    "Transfer-Encoding",
    "Upgrade",
    "Vary",
    "Via",
    "Warning",
    "Expect",
    "Proxy-Connection",
    "Unless-Modified-Since",
};

}  // namespace

const char* HeaderNameOf(DWORD query) {
  return query < kHeaderNames.size() ? kHeaderNames[query] : nullptr;
}

const std::string* HeaderBlock::Find(std::string_view name, std::size_t index) const {
  for (const HeaderLine& line : m_lines) {
    if (EqualNoCase(line.name, name) && index-- == 0) return &line.value;
  }
  return nullptr;
}

std::vector<std::string_view> HeaderBlock::All(std::string_view name) const {
  std::vector<std::string_view> values;
  for (const HeaderLine& line : m_lines) {
    if (EqualNoCase(line.name, name)) values.emplace_back(line.value);
  }
  return values;
}

void HeaderBlock::Append(std::string_view name, std::string_view value) {
  m_lines.push_back({std::string(name), std::string(value)});
}

void HeaderBlock::ContinueLast(std::string_view value) {
  if (m_lines.empty()) return;
  m_lines.back().value += ' ';
  m_lines.back().value += value;
}

void HeaderBlock::AddIfNew(std::string_view name, std::string_view value) {
  if (Find(name) == nullptr) Append(name, value);
}

void HeaderBlock::Set(std::string_view name, std::string_view value) {
  for (HeaderLine& line : m_lines) {
    if (EqualNoCase(line.name, name)) {
      line.value = value;
      return;
    }
  }
  Append(name, value);
}

void HeaderBlock::Replace(std::string_view name, std::string_view value) {
  Remove(name);
  Append(name, value);
}

void HeaderBlock::Remove(std::string_view name) {
  std::erase_if(m_lines, [name](const HeaderLine& line) { return EqualNoCase(line.name, name); });
}

void HeaderBlock::ReplaceFromText(std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = TrimBlanks(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || colon == 0) continue;
    Replace(TrimBlanks(line.substr(0, colon)), TrimBlanks(line.substr(colon + 1)));
  }
}

void ResponseHead::SetStatusLine(std::string_view line) {
  Clear();
  statusLine = line;
  std::string_view rest = statusLine;
  const std::size_t blank = std::min(rest.find(' '), rest.size());
  version = rest.substr(0, blank);
  rest = TrimBlanks(rest.substr(blank));
  const std::size_t codeEnd = std::min(rest.find(' '), rest.size());
  statusCode = rest.substr(0, codeEnd);
  reason = TrimBlanks(rest.substr(codeEnd));
  std::from_chars(statusCode.data(), statusCode.data() + statusCode.size(), status);
}

}  // namespace velandoc::http
