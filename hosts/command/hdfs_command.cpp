#include "hosts/command/hdfs_command.h"

#include <nlohmann/json.hpp>

#include "hosts/command/command_module.h"
#include "hosts/command/hdfs_actions.h"
#include "hosts/command/hdfs_winhttp_watch.h"
#include "hosts/command/hdfs_wininet_watch.h"
#include "hosts/command/json_text.h"
#include "hosts/command/talk.h"
#include "platform/name_overrides.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

/// False, with the reason told, where the names are not the program's business.
bool ApplyNames(const HdfsOptions& options) {
  std::string list;
  for (const std::string& word : options.resolve) list += (list.empty() ? "" : ",") + word;
  if (list.empty() || OverrideNames(list.c_str())) return true;
  Talk(
      "--resolve: here names are looked up by the system alone: write the addresses into its "
      "hosts file");
  return false;
}

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
  if (!ApplyNames(options.hdfs)) return kExitUsage;
  const CommandModule module;
  HdfsWinInetWatch wininet(CurrentPort<WinInet>(), !options.hdfs.checksCertificates);
  const PortScope<WinInet> wininetScope(wininet);
  HdfsWinHttpWatch winhttp(CurrentPort<WinHttp>(), !options.hdfs.checksCertificates);
  const PortScope<WinHttp> winhttpScope(winhttp);
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
