#include "hosts/command/hdfs_command.h"

#include "hosts/command/command_module.h"
#include "hosts/command/hdfs_actions.h"
#include "hosts/command/hdfs_wininet_watch.h"
#include "hosts/command/json_text.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

int Run(const HdfsRun& run) {
  switch (run.Hdfs().action) {
    case HdfsAction::kGet:
      return GetFiles(run);
    case HdfsAction::kCat:
      return PrintFile(run);
    case HdfsAction::kHead:
      return PrintHead(run);
    case HdfsAction::kPut:
      return PutFiles(run);
    case HdfsAction::kRemove:
      return RemovePath(run);
    case HdfsAction::kMove:
      return MovePath(run);
    case HdfsAction::kMakeFolder:
      return MakeFolder(run);
    case HdfsAction::kList:
      return ListFolder(run);
    case HdfsAction::kStat:
      return ShowFileStatus(run);
    case HdfsAction::kVerify:
      return VerifyNodes(run);
  }
  return kExitFailure;
}

}  // namespace

void HdfsRun::Tell(const std::string& line) const {
  if (!options.json && !Hdfs().quiet) progress.Print(line);
}

void HdfsRun::WriteJson(const nlohmann::ordered_json& json) const { WriteOutput(JsonText(json)); }

int HdfsRun::Fail(const HdfsFailure& failure) const {
  progress.Say(FailureText(failure));
  if (options.json) WriteJson({{"error", FailureJson(failure)}});
  return failure.exitCode;
}

int RunHdfs(const Options& options) {
  const CommandModule module;
  HdfsWinInetWatch wininet(CurrentPort<WinInet>(), !options.hdfs.checksCertificates);
  const PortScope<WinInet> wininetScope(wininet);
  NameNodes nodes(options.hdfs.nodes);
  HdfsCaller caller(options.hdfs, nodes);
  int exitCode = kExitFailure;
  {
    TransferProgress progress(!options.hdfs.quiet && IsTalkTerminal());
    exitCode = Run({options, caller, progress});
  }
  return FlushOutput() ? exitCode : kExitOutput;
}

}  // namespace velandoc
