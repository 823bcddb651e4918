// What became of the files of one get or put.
#pragma once

#include <cstdint>
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

/// Tells of one file as soon as it is over, for any thread.
void TellTransfer(const HdfsRun& run, const TransferResult& result);

/// The end: JSON, or with `isTree` a line with the sums. The exit code, which is that of the first
/// failure in the order of `results`.
int FinishTransfers(const HdfsRun& run, const std::vector<TransferResult>& results, bool isTree);

}  // namespace velandoc
