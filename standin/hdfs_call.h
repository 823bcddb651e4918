// A WebHDFS request as its address tells it.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "standin/request.h"

namespace velandoc::standin {

// An address that no servlet container accepts; the message says why.
class BadHdfsAddress : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct HdfsParam {
  // In small letters, as names of parameters are read in any case.
  std::string name;
  // "name=value" as it was sent, for addresses into which it is to pass unchanged.
  std::string raw;
  // Nothing where its escapes are malformed.
  std::optional<std::string> value;
};

struct HdfsCall {
  // In capitals; empty without one.
  std::string op;
  // For a data node: the name node sent the client here.
  bool isForData = false;
  // All but the operation, in their order.
  std::vector<HdfsParam> params;

  // Null when it is not there.
  const HdfsParam* Find(std::string_view name) const;
};

// Nothing for what is no address of WebHDFS. Malformed escapes are no reason.
std::optional<HdfsCall> ParseHdfsCall(const Request& request);

// The path within HDFS, without escapes, its leading slash included. Throws BadHdfsAddress if an
// escape has not two hexadecimal digits or if the bytes are no UTF-8.
std::string DecodeHdfsPath(const Request& request);

// What stands in a path as it is stays, the rest becomes escapes of its UTF-8.
std::string EncodeHdfsPath(std::string_view path);

}  // namespace velandoc::standin
