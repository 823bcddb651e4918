#include "standin/response_writer.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <string>

#include "standin/text.h"

namespace velandoc::standin {
namespace {

constexpr std::size_t kPeriod = 251;
// A whole number of periods, small enough to stay in the cache.
constexpr std::size_t kPatternPiece = kPeriod * 1024;

const std::string& CountingPiece() {
  static const std::string piece = [] {
    std::string bytes(kPatternPiece + kPeriod, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i % kPeriod);
    return bytes;
  }();
  return piece;
}

// 64 bytes a line: a whole number of them is a piece.
constexpr std::string_view kLine =
    "A line of text, as it stands in a file that nobody ever stored.\n";
constexpr std::size_t kLinesPiece = kLine.size() * 4096;

const std::string& LinesPiece() {
  static_assert(kLine.size() == 64);
  static const std::string piece = [] {
    std::string bytes;
    while (bytes.size() < kLinesPiece + kLine.size()) bytes += kLine;
    return bytes;
  }();
  return piece;
}

bool HasBody(const Response& response, bool isHeadRequest) {
  return !isHeadRequest && response.status >= 200 && response.status != 204 &&
         response.status != 304;
}

// Hands out the body piece by piece.
class BodySource {
 public:
  explicit BodySource(const Response& response) : m_response(response) {
    if (response.pattern == Pattern::kSame)
      m_same.assign(std::min<std::uint64_t>(kPatternPiece, response.patternLength),
                    static_cast<char>(response.fillByte));
  }

  // At most `most` bytes; empty at the end.
  std::string_view Next(std::uint64_t most) {
    if (m_bodyDone < m_response.body.size()) {
      const auto piece = std::string_view(m_response.body).substr(m_bodyDone, most);
      m_bodyDone += piece.size();
      return piece;
    }
    if (m_response.file) return NextOfFile(most);
    most = std::min(most, m_response.patternLength - m_patternDone);
    most = std::min<std::uint64_t>(most, kPatternPiece);
    const std::uint64_t start = m_response.patternStart + m_patternDone;
    m_patternDone += most;
    if (m_response.pattern == Pattern::kSame) return std::string_view(m_same).substr(0, most);
    if (m_response.pattern == Pattern::kLines)
      return std::string_view(LinesPiece()).substr(start % kLine.size(), most);
    return std::string_view(CountingPiece()).substr(start % kPeriod, most);
  }

 private:
  std::string_view NextOfFile(std::uint64_t most) {
    most = std::min<std::uint64_t>({most, m_response.fileLength - m_fileDone, kPatternPiece});
    if (most == 0) return {};
    if (!m_piece) m_piece = std::make_unique_for_overwrite<char[]>(kPatternPiece);
    const ssize_t got = pread(m_response.file->Get(), m_piece.get(), most,
                              static_cast<off_t>(m_response.fileStart + m_fileDone));
    if (got <= 0) return {};
    m_fileDone += static_cast<std::uint64_t>(got);
    return {m_piece.get(), static_cast<std::size_t>(got)};
  }

  const Response& m_response;
  std::string m_same;
  std::size_t m_bodyDone = 0;
  std::uint64_t m_patternDone = 0;
  std::uint64_t m_fileDone = 0;
  std::unique_ptr<char[]> m_piece;
};

std::string Head(const Response& response) {
  std::string head = "HTTP/1.1 ";
  head += std::to_string(response.status);
  head += ' ';
  head += response.reason.empty() ? UsualReason(response.status) : response.reason;
  head += "\r\n";
  bool isLengthGiven = false;
  for (const Header& header : response.headers) {
    head += header.name;
    head += ": ";
    head += header.value;
    head += "\r\n";
    isLengthGiven = isLengthGiven || EqualNoCase(header.name, "Content-Length");
  }
  const bool mayHaveLength = response.status >= 200 && response.status != 204;
  if (response.framing == Framing::kChunked) {
    head += "Transfer-Encoding: chunked\r\n";
  } else if (response.framing == Framing::kLength && mayHaveLength && !isLengthGiven) {
    head += "Content-Length: ";
    head += std::to_string(response.Length());
    head += "\r\n";
  }
  if (response.close || response.framing == Framing::kClose) head += "Connection: close\r\n";
  head += "\r\n";
  return head;
}

bool SendChunk(AnswerStream& stream, std::string_view head, std::string& scratch,
               BodySource& source, std::uint64_t size) {
  scratch.clear();
  std::array<char, 16> digits{};
  const auto end = std::to_chars(digits.begin(), digits.end(), size, 16);
  scratch.append(digits.begin(), end.ptr);
  scratch += "\r\n";
  for (std::uint64_t left = size; left > 0;) {
    const std::string_view piece = source.Next(left);
    // A file that became shorter: the client is not to take what there is for the whole.
    if (piece.empty()) return false;
    scratch += piece;
    left -= piece.size();
  }
  scratch += "\r\n";
  return stream.Send(head, scratch);
}

bool WriteChunked(AnswerStream& stream, std::string_view head, const Response& response) {
  BodySource source(response);
  std::string scratch;
  for (std::uint64_t left = response.Length(); left > 0;) {
    const std::uint64_t size = std::min(left, response.chunkSize);
    if (!SendChunk(stream, head, scratch, source, size)) return false;
    head = {};
    left -= size;
  }
  return stream.Send(head, "0\r\n\r\n");
}

}  // namespace

bool WriteResponse(AnswerStream& stream, const Response& response, bool isHeadRequest) {
  const std::string head = Head(response);
  if (!HasBody(response, isHeadRequest)) return stream.Send(head, {});
  if (response.framing == Framing::kChunked) return WriteChunked(stream, head, response);
  BodySource source(response);
  std::string_view part = head;
  std::uint64_t sent = 0;
  do {
    const std::string_view piece = source.Next(kPatternPiece);
    if (!stream.Send(part, piece)) return false;
    part = {};
    if (piece.empty()) return sent == response.Length();
    sent += piece.size();
  } while (sent < response.Length());
  return true;
}

}  // namespace velandoc::standin
