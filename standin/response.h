// An answer before it is put on the wire.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "standin/request.h"
#include "standin/unique_fd.h"

namespace velandoc::standin {

enum class Framing {
  kLength,
  kChunked,
  kClose,  // No length: the end of the connection ends the body.
};

// Bytes that repeat without end; large answers are sent from it without being built.
enum class Pattern {
  kNone,
  kCounting,  // Byte i is i modulo 251, so that a misplaced piece shows.
  kSame,      // Every byte is Response::fillByte.
  kLines,     // Lines of 64 bytes, their line feed counted.
};

struct Response {
  int status = 200;
  // Empty for the usual words of the status.
  std::string reason;
  std::vector<Header> headers;
  std::string body;
  // Followed by that many bytes of the pattern, from its byte patternStart on.
  Pattern pattern = Pattern::kNone;
  unsigned char fillByte = 0;
  std::uint64_t patternStart = 0;
  std::uint64_t patternLength = 0;
  // Or followed by that part of a file, which is read while it is sent. Nobody writes to it then.
  std::shared_ptr<const UniqueFd> file;
  std::uint64_t fileStart = 0;
  std::uint64_t fileLength = 0;

  Framing framing = Framing::kLength;
  // The payload of one chunk.
  std::uint64_t chunkSize = 64 * 1024;
  // The connection ends behind this answer.
  bool close = false;

  std::uint64_t Length() const { return body.size() + patternLength + fileLength; }
};

std::string_view UsualReason(int status);
Response HtmlPage(int status, std::string_view title, std::string_view text);
Response TextAnswer(int status, std::string_view contentType, std::string body);

}  // namespace velandoc::standin
