// Reading the body of a request, whichever way it is framed.
#pragma once

#include <cstdint>
#include <optional>

#include "standin/body_sink.h"
#include "standin/input_buffer.h"
#include "standin/request.h"

namespace velandoc::standin {

enum class BodyResult {
  kComplete,
  kStopped,    // After `stopAfter` bytes.
  kCutShort,   // The client left.
  kMalformed,  // Bad framing: both or unreadable lengths, bad chunks.
  kTooLong,    // More than can be kept.
};

// The largest body that the log shows byte by byte.
inline constexpr std::uint64_t kLargestLoggedBody = 64 * 1024;
// Above this, hashing would be slower than the transfer that it describes, so it is left out unless
// a test asks for it.
inline constexpr std::uint64_t kLargestHashedBody = 64u << 20;

struct BodyOptions {
  // Keep request.body; else the bytes pass unseen (up to 64 KiB are kept for the log all the same).
  bool keep = true;
  // The largest body to hash; 0 for none.
  std::uint64_t largestHash = kLargestHashedBody;
  // Gets the payload; may be null.
  BodySink* sink = nullptr;
  // Stop once that many bytes of payload have been read.
  std::optional<std::uint64_t> stopAfter;
};

// The largest body that is held for an application.
inline constexpr std::uint64_t kLargestKeptBody = 256u << 20;

BodyResult ReadBody(InputBuffer& input, Request& request, const BodyOptions& options);

}  // namespace velandoc::standin
