// Takes the body of a request as it arrives, for bodies that are too large to be held.
#pragma once

#include <cstdint>
#include <string_view>

#include "standin/response.h"

namespace velandoc::standin {

// Made when the head is read, used by the thread of the connection. A sink that is destroyed
// without Finish saw its client leave.
class BodySink {
 public:
  virtual ~BodySink() = default;

  // The answer that stands whatever the body; null: bring the body. With an answer, a client that
  // asked for 100 Continue gets it at once and keeps its body; else the body passes unseen.
  virtual const Response* Settled() const { return nullptr; }

  // 100 Continue goes out although nobody asked for it.
  virtual bool GreetsUnasked() const { return false; }

  // False: the length is all that counts, so that bytes may come as Skip.
  virtual bool NeedsBytes() const { return true; }

  virtual void Add(std::string_view bytes) = 0;
  virtual void Skip(std::uint64_t count) = 0;

  // The whole body was there.
  virtual Response Finish() = 0;
};

}  // namespace velandoc::standin
