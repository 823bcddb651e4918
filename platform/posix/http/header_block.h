// Header lines in order, of a request or of an answer, and the query by WinINet's numbers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/wininet_types.h"

namespace velandoc::http {

struct HeaderLine {
  std::string name;
  std::string value;
};

class HeaderBlock {
 public:
  const std::vector<HeaderLine>& Lines() const { return m_lines; }
  void Clear() { m_lines.clear(); }

  /// The index-th value under this name, null if there are fewer.
  const std::string* Find(std::string_view name, std::size_t index = 0) const;
  std::vector<std::string_view> All(std::string_view name) const;
  void Append(std::string_view name, std::string_view value);
  /// A folded line's second part.
  void ContinueLast(std::string_view value);
  void AddIfNew(std::string_view name, std::string_view value);
  /// Keeps the place of the line that is there.
  void Set(std::string_view name, std::string_view value);
  /// Takes out what is there and appends: how WinINet treats a header that the caller gives twice.
  void Replace(std::string_view name, std::string_view value);
  void Remove(std::string_view name);

  /// A caller's header text: lines end in LF or CRLF; empty lines and lines without a colon are
  /// dropped. A line that is there already, value and all, keeps its place.
  void ReplaceFromText(std::string_view text);

 private:
  std::vector<HeaderLine> m_lines;
};

/// An answer's head.
struct ResponseHead {
  unsigned status = 0;  // 0: there is none
  std::string version;  // "HTTP/1.1"
  std::string statusCode;
  std::string reason;
  std::string statusLine;
  HeaderBlock headers;

  void Clear() { *this = ResponseHead(); }
  /// `line` without its end. What was there is dropped.
  void SetStatusLine(std::string_view line);
};

/// The header name behind a HTTP_QUERY number; null for numbers that stand for no header.
const char* HeaderNameOf(DWORD query);

}  // namespace velandoc::http
