#include "standin/request_body.h"

#include <algorithm>
#include <memory>

#include "standin/sha256.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

constexpr std::size_t kPiece = 256 * 1024;
constexpr std::size_t kMostChunksNoted = 1000;

// Takes in the payload, from either framing.
class BodyReader {
 public:
  BodyReader(InputBuffer& input, Request& request, const BodyOptions& options)
      : m_input(input), m_request(request), m_options(options) {}

  BodyResult Length(std::uint64_t length) {
    m_keep = m_options.keep || length <= kLargestLoggedBody;
    m_hash = length > kLargestLoggedBody && length <= m_options.largestHash;
    if (m_options.keep && length > kLargestKeptBody) return BodyResult::kTooLong;
    if (m_keep) m_request.body.reserve(length);
    return Finish(Payload(length));
  }

  BodyResult Chunked() {
    m_keep = true;
    m_hash = m_options.largestHash > 0;
    std::string line;
    for (;;) {
      if (!m_input.ReadLine(line)) return Finish(BodyResult::kCutShort);
      const auto size =
          ParseNumber<std::uint64_t>(Trim(std::string_view(line).substr(0, line.find(';'))), 16);
      if (!size) return Finish(BodyResult::kMalformed);
      if (*size == 0) break;
      if (m_request.chunks.size() < kMostChunksNoted) m_request.chunks.push_back(*size);
      if (const BodyResult result = Payload(*size); result != BodyResult::kComplete)
        return Finish(result);
      if (!m_input.ReadLine(line)) return Finish(BodyResult::kCutShort);
      if (!line.empty()) return Finish(BodyResult::kMalformed);
    }
    do {
      if (!m_input.ReadLine(line)) return Finish(BodyResult::kCutShort);
    } while (!line.empty());
    return Finish(BodyResult::kComplete);
  }

 private:
  BodyResult Payload(std::uint64_t length) {
    while (length > 0) {
      const bool isLookedAt = m_keep || m_hash || (m_options.sink && m_options.sink->NeedsBytes());
      std::uint64_t wanted = std::min<std::uint64_t>(length, isLookedAt ? kPiece : length);
      if (m_options.stopAfter)
        wanted = std::min(wanted, *m_options.stopAfter - m_request.bodyLength);
      if (wanted == 0) return BodyResult::kStopped;
      const std::size_t got = isLookedAt ? Look(wanted) : Pass(wanted);
      if (got == 0) return BodyResult::kCutShort;
      length -= got;
      m_request.bodyLength += got;
      if (m_request.bodyLength > m_options.largestHash) m_hash = false;
      if (m_request.bodyLength > kLargestLoggedBody && !m_options.keep && m_keep) {
        m_keep = false;
        m_request.body.clear();
      }
      if (m_options.keep && m_request.bodyLength > kLargestKeptBody) return BodyResult::kTooLong;
    }
    return BodyResult::kComplete;
  }

  std::size_t Look(std::uint64_t wanted) {
    if (!m_piece) m_piece = std::make_unique_for_overwrite<char[]>(kPiece);
    const std::size_t got = m_input.Read(m_piece.get(), wanted);
    const std::string_view bytes(m_piece.get(), got);
    if (m_keep) m_request.body += bytes;
    if (m_hash) m_sha256.Add(bytes);
    if (m_options.sink && got > 0) m_options.sink->Add(bytes);
    return got;
  }

  std::size_t Pass(std::uint64_t wanted) {
    const std::size_t got = m_input.Discard(wanted);
    if (m_options.sink) m_options.sink->Skip(got);
    return got;
  }

  BodyResult Finish(BodyResult result) {
    if (m_hash && m_request.bodyLength > kLargestLoggedBody)
      m_request.bodySha256 = m_sha256.Finish();
    return result;
  }

  InputBuffer& m_input;
  Request& m_request;
  const BodyOptions& m_options;
  std::unique_ptr<char[]> m_piece;
  Sha256 m_sha256;
  bool m_keep = true;
  bool m_hash = true;
};

}  // namespace

BodyResult ReadBody(InputBuffer& input, Request& request, const BodyOptions& options) {
  const std::string* encoding = request.Find("Transfer-Encoding");
  const std::string* length = request.Find("Content-Length");
  if (encoding) {
    if (length || !EqualNoCase(*encoding, "chunked")) return BodyResult::kMalformed;
    return BodyReader(input, request, options).Chunked();
  }
  if (!length) return BodyResult::kComplete;
  for (const Header& header : request.headers)
    if (EqualNoCase(header.name, "Content-Length") && header.value != *length)
      return BodyResult::kMalformed;
  const auto value = ParseNumber<std::uint64_t>(*length);
  if (!value) return BodyResult::kMalformed;
  if (*value == 0) return BodyResult::kComplete;
  return BodyReader(input, request, options).Length(*value);
}

}  // namespace velandoc::standin
