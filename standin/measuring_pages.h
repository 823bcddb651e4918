// Pages of known size, for throughput: /bytes/N and /chunked/N send N bytes, /sink swallows what it
// is sent and answers with the number of bytes, /echo answers with the request as it came. Any
// host.
#pragma once

#include "standin/application.h"

namespace velandoc::standin {

class MeasuringPages final : public Application {
 public:
  bool Serves(const Request& request) const override;
  bool IgnoresBody(const Request& request) const override;
  Response Answer(const Request& request) override;
};

}  // namespace velandoc::standin
