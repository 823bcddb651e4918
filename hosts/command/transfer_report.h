// The files of one get or put: transferred one by one or several at once, and told of.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "hosts/command/hdfs_actions.h"

namespace velandoc {

enum class TransferOutcome { kFailed, kSkipped, kDone };

struct TransferResult {
  std::string from;
  std::string to;
  std::uint64_t length = 0;
  TransferOutcome outcome = TransferOutcome::kFailed;
  std::optional<HdfsFailure> failure;
};

/// Calls `transfer` with the index of each file that is neither skipped nor failed already, on as
/// many threads as the options allow, and tells of each file as soon as it is over. At the end:
/// JSON, or with `isTree` a line with the sums. `name` stands at the progress of a file that is no
/// part of a tree. The exit code is that of the first failure in the order of `files`.
int TransferFiles(const HdfsRun& run, std::vector<TransferResult> files, bool isTree,
                  const std::string& name,
                  const std::function<std::optional<HdfsFailure>(std::size_t)>& transfer);

}  // namespace velandoc
