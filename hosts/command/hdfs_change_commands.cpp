// velandoc hdfs rm, mv and mkdir.
#include <nlohmann/json.hpp>

#include "hosts/command/file_status.h"
#include "hosts/command/hdfs_actions.h"
#include "hosts/command/hdfs_changes.h"
#include "hosts/command/visible_text.h"

namespace velandoc {
namespace {

/// One way that a change ends: a failure, a no, or done.
int Finish(const HdfsRun& run, const char* operation, const std::optional<HdfsFailure>& failure,
           bool done, const std::string& no, int noCode, const std::string& yes) {
  const std::string& path = run.Hdfs().remote;
  if (failure) return run.Fail(*failure);
  if (!done) return run.Fail(LocalFailure(operation, path, no, noCode));
  nlohmann::ordered_json json = {{"path", path}, {"done", true}};
  if (run.Hdfs().action == HdfsAction::kMove) json["destination"] = run.Hdfs().destination;
  if (run.options.json) run.WriteJson(json);
  run.Tell(yes);
  return kExitSuccess;
}

}  // namespace

int RemovePath(const HdfsRun& run) {
  const std::string& path = run.Hdfs().remote;
  bool done = false;
  const auto failure = DeletePath(run.caller, path, run.Hdfs().recursive, done);
  return Finish(run, "DELETE", failure, done, "there is no such file or folder", kExitNotOpened,
                VisibleText(path) + ": deleted");
}

int MovePath(const HdfsRun& run) {
  const HdfsOptions& options = run.Hdfs();
  bool done = false;
  const auto failure = RenamePath(run.caller, options.remote, options.destination, done);
  if (failure || done) {
    return Finish(run, "RENAME", failure, done, {}, kExitNo,
                  VisibleText(options.remote) + " -> " + VisibleText(options.destination));
  }
  // The server only says no; why is worth two questions.
  FileStatus status;
  const auto missing = AskStatus(run.caller, options.remote, status);
  if (missing && missing->IsMissing()) return run.Fail(*missing);
  const auto free = AskStatus(run.caller, options.destination, status);
  const std::string destination = "'" + VisibleText(options.destination) + "'";
  if (!free) {
    return Finish(run, "RENAME", std::nullopt, false, destination + " is there already",
                  kExitExists, {});
  }
  return Finish(run, "RENAME", std::nullopt, false,
                "the server says no; does the folder of " + destination + " exist?", kExitNo, {});
}

int MakeFolder(const HdfsRun& run) {
  const HdfsOptions& options = run.Hdfs();
  bool done = false;
  const auto failure = CreateFolder(run.caller, options.remote, options.permission, done);
  return Finish(run, "MKDIRS", failure, done, "the server says no", kExitNo,
                VisibleText(options.remote) + ": made");
}

}  // namespace velandoc
