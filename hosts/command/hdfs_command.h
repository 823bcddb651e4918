// velandoc hdfs: reads and writes files in HDFS.
#pragma once

#include "hosts/command/options.h"

namespace velandoc {

/// The exit code; what went wrong is told on the error stream.
int RunHdfs(const Options& options);

}  // namespace velandoc
