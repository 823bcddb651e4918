// The parameters of WebHDFS by their types. Each operation throws HdfsError for a value that the
// parameter cannot have, and BadHdfsAddress for malformed escapes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "standin/hdfs_call.h"

namespace velandoc::standin {

bool HdfsBool(const HdfsCall& call, std::string_view name, bool otherwise);
std::optional<std::uint64_t> HdfsNumber(const HdfsCall& call, std::string_view name);
// Octal, 1777 at the most.
unsigned HdfsPermission(const HdfsCall& call, unsigned otherwise);
// An absolute path.
std::string HdfsDestination(const HdfsCall& call);
// Whose credentials a rule demanded, without a domain; else `user.name`; else nobody's name.
std::string HdfsCaller(const HdfsCall& call, const Request& request);

}  // namespace velandoc::standin
