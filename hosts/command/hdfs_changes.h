// The operations of HDFS that are answered with true or false.
#pragma once

#include <optional>
#include <string>

#include "hosts/command/hdfs_caller.h"

namespace velandoc {

// `done` is the server's own word, from its answer: of the component's two clients one takes any
// answer to a renaming for a yes.

/// False also for what is not there.
std::optional<HdfsFailure> DeletePath(HdfsCaller& caller, const std::string& path, bool recursive,
                                      bool& done);
/// False also for a name that is taken.
std::optional<HdfsFailure> RenamePath(HdfsCaller& caller, const std::string& path,
                                      const std::string& destination, bool& done);
std::optional<HdfsFailure> CreateFolder(HdfsCaller& caller, const std::string& path,
                                        const std::string& permission, bool& done);

}  // namespace velandoc
