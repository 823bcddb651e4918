// The commands of `velandoc hdfs`, each with its exit code as the result.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "hosts/command/hdfs_caller.h"
#include "hosts/command/options.h"
#include "hosts/command/transfer_progress.h"

namespace velandoc {

struct HdfsRun {
  const Options& options;
  HdfsCaller& caller;
  TransferProgress& progress;

  const HdfsOptions& Hdfs() const { return options.hdfs; }
  /// Writes a line of the result, unless --json or --quiet asks for none.
  void Tell(const std::string& line) const;
  void WriteJson(const nlohmann::ordered_json& json) const;
  /// Tells the failure, as JSON too if that is asked for; its exit code.
  int Fail(const HdfsFailure& failure) const;
};

int GetFiles(const HdfsRun& run);
int PrintFile(const HdfsRun& run);
int PrintHead(const HdfsRun& run);
int PutFiles(const HdfsRun& run);
int RemovePath(const HdfsRun& run);
int MovePath(const HdfsRun& run);
int MakeFolder(const HdfsRun& run);
int ListFolder(const HdfsRun& run);
int ShowFileStatus(const HdfsRun& run);
int VerifyNodes(const HdfsRun& run);

}  // namespace velandoc
