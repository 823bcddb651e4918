#include "hosts/command/transfer_report.h"

#include <nlohmann/json.hpp>

#include "hosts/command/transfer_pool.h"
#include "hosts/command/visible_text.h"

namespace velandoc {
namespace {

const char* WordOf(TransferOutcome outcome) {
  switch (outcome) {
    case TransferOutcome::kDone:
      return "transferred";
    case TransferOutcome::kSkipped:
      return "skipped";
    case TransferOutcome::kFailed:
      break;
  }
  return "failed";
}

nlohmann::ordered_json ResultJson(const TransferResult& result) {
  return {{"from", result.from},
          {"to", result.to},
          {"length", result.length},
          {"outcome", WordOf(result.outcome)},
          {"error", result.failure ? FailureJson(*result.failure) : nullptr}};
}

bool IsPending(const TransferResult& result) {
  return result.outcome == TransferOutcome::kFailed && !result.failure;
}

/// For any thread.
void TellTransfer(const HdfsRun& run, const TransferResult& result) {
  if (result.failure) {
    run.progress.Say(FailureText(*result.failure));
    return;
  }
  const std::string what = result.outcome == TransferOutcome::kSkipped
                               ? "skipped, it has the right size"
                               : std::to_string(result.length) + " bytes";
  run.Tell(VisibleText(result.from) + " -> " + VisibleText(result.to) + ": " + what);
}

int TellSums(const HdfsRun& run, const std::vector<TransferResult>& results, bool isTree) {
  std::size_t done = 0;
  std::size_t skipped = 0;
  std::size_t failed = 0;
  std::uint64_t bytes = 0;
  int exitCode = kExitSuccess;
  nlohmann::ordered_json files = nlohmann::ordered_json::array();
  for (const TransferResult& result : results) {
    files.push_back(ResultJson(result));
    switch (result.outcome) {
      case TransferOutcome::kDone:
        ++done;
        bytes += result.length;
        break;
      case TransferOutcome::kSkipped:
        ++skipped;
        break;
      case TransferOutcome::kFailed:
        ++failed;
        if (exitCode == kExitSuccess) {
          exitCode = result.failure ? result.failure->exitCode : kExitFailure;
        }
        break;
    }
  }
  if (run.options.json) {
    run.WriteJson({{"files", files},
                   {"transferred", done},
                   {"skipped", skipped},
                   {"failed", failed},
                   {"bytes", bytes}});
  } else if (isTree) {
    run.Tell(std::to_string(done) + " transferred (" + std::to_string(bytes) + " bytes), " +
             std::to_string(skipped) + " skipped, " + std::to_string(failed) + " failed");
  }
  return exitCode;
}

}  // namespace

int TransferFiles(const HdfsRun& run, std::vector<TransferResult> files, bool isTree,
                  const std::string& name,
                  const std::function<std::optional<HdfsFailure>(std::size_t)>& transfer) {
  std::uint64_t total = 0;
  for (const TransferResult& file : files) {
    if (IsPending(file)) total += file.length;
  }
  HdfsExchangeLog::OfThread().CountInto(&run.progress.Count());
  run.progress.Begin(total, isTree ? std::to_string(files.size()) + " files" : name);
  RunOnThreads(files.size(), run.Hdfs().jobs, [&](std::size_t i) {
    TransferResult& file = files[i];
    if (IsPending(file)) {
      file.failure = transfer(i);
      if (!file.failure) file.outcome = TransferOutcome::kDone;
    }
    TellTransfer(run, file);
  });
  return TellSums(run, files, isTree);
}

}  // namespace velandoc
