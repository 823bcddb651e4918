// velandoc hdfs put: files to HDFS, each under a name of its own until it is whole.
#include <algorithm>

#include "hosts/command/file_status.h"
#include "hosts/command/hdfs_actions.h"
#include "hosts/command/hdfs_changes.h"
#include "hosts/command/hdfs_path.h"
#include "hosts/command/local_path.h"
#include "hosts/command/spooled_input.h"
#include "hosts/command/transfer_report.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

namespace fs = std::filesystem;

// The component announces an upload's length in 32 bits.
constexpr std::uint64_t kLongestUpload = 0xFFFFFFFF;
constexpr int kStatusCreated = 201;

struct Job {
  fs::path local;
  std::string shown;  // the local name for people
  std::string remote;
  std::uint64_t length = 0;
  std::optional<std::uint64_t> remoteLength;  // of what is there already
};

HdfsFailure TooLong(const std::string& local) {
  return LocalFailure("put", local,
                      "it has 4 GiB or more, which the component cannot send in one upload; "
                      "nothing was sent",
                      kExitUsage);
}

/// Whether a file of this name can be renamed into place; any other is written in place.
bool CanBeRenamed(const HdfsOptions& options, const std::string& path) {
  return !FindRenameProblem(path, options.stack);
}

/// Deletes what was sent to `path`; a failure to do so is told with `failure`.
void DeleteSent(const HdfsRun& run, const std::string& path, HdfsFailure& failure) {
  bool done = false;
  if (DeletePath(run.caller, path, false, done)) {
    failure.what += "; what was sent may stand at '" + VisibleText(path) + "'";
  }
}

/// Sends the file to `path`. What a failure leaves there is deleted, as far as it was begun.
std::optional<HdfsFailure> Send(const HdfsRun& run, const Job& job, const std::string& path,
                                bool overwrites) {
  const Variant source(WideFromUtf8(Utf8Of(job.local)));
  const Bstr permission(WideFromUtf8(run.Hdfs().permission));
  std::optional<HdfsFailure> failure =
      run.caller.Run({"CREATE", path, kStatusCreated, false}, [&](IHdfsClient& client) {
        return client.Upload(source.Get(), overwrites ? VARIANT_TRUE : VARIANT_FALSE,
                             permission.Get());
      });
  if (failure && failure->node.empty()) {
    return LocalFailure("reading", job.shown, "it may not be read, or another program has it open",
                        kExitLocalFile);
  }
  const bool begun = HdfsExchangeLog::OfThread().Exchanges().size() > 1;
  if (!failure) {
    FileStatus status;
    failure = AskStatus(run.caller, path, status);
    if (!failure && status.length != job.length) {
      failure = LocalFailure(
          "CREATE", path,
          std::to_string(status.length) + " of " + std::to_string(job.length) + " bytes arrived",
          kExitIncomplete);
    }
  }
  if (failure && begun) DeleteSent(run, path, *failure);
  return failure;
}

HdfsFailure ThereAlready(const std::string& path) {
  return LocalFailure("put", path, "it is there already", kExitExists);
}

/// Brings what was sent to its name. HDFS renames onto nothing that is there, so a file to be
/// replaced is deleted first: for that moment there is none.
std::optional<HdfsFailure> MoveIntoPlace(const HdfsRun& run, const Job& job,
                                         const std::string& part) {
  bool done = false;
  std::optional<HdfsFailure> failure;
  bool deleted = false;
  if (job.remoteLength) {
    failure = DeletePath(run.caller, job.remote, false, deleted);
  }
  if (!failure) failure = RenamePath(run.caller, part, job.remote, done);
  if (!failure && done) return std::nullopt;
  if (deleted) {
    const std::string where = "the whole file stands at '" + VisibleText(part) + "'";
    if (!failure) {
      failure = LocalFailure("RENAME", part, "the server says no; " + where, kExitNo);
    } else {
      failure->what += "; " + where;
    }
    return failure;
  }
  bool ignored = false;
  const auto left = DeletePath(run.caller, part, false, ignored);
  if (!failure) {
    FileStatus status;
    const bool taken = !AskStatus(run.caller, job.remote, status);
    failure = taken ? ThereAlready(job.remote)
                    : LocalFailure("RENAME", part, "the server says no", kExitNo);
  }
  if (left) failure->what += "; what was sent may stand at '" + VisibleText(part) + "'";
  return failure;
}

std::optional<HdfsFailure> Store(const HdfsRun& run, const Job& job) {
  if (!CanBeRenamed(run.Hdfs(), job.remote)) {
    return Send(run, job, job.remote, !run.Hdfs().noOverwrite);
  }
  const std::string part = JoinPath(FolderOf(job.remote), PartName(NameOf(job.remote)));
  if (auto failure = Send(run, job, part, true)) return failure;
  return MoveIntoPlace(run, job, part);
}

int StoreAll(const HdfsRun& run, const std::vector<Job>& jobs, bool isTree) {
  const HdfsOptions& options = run.Hdfs();
  std::vector<TransferResult> files;
  files.reserve(jobs.size());
  for (const Job& job : jobs) {
    TransferResult& file = files.emplace_back();
    file.from = job.shown;
    file.to = job.remote;
    file.length = job.length;
    const bool isSame = isTree && !options.all && job.remoteLength == job.length;
    if (isSame) {
      file.outcome = TransferOutcome::kSkipped;
    } else if (job.remoteLength && options.noOverwrite) {
      file.failure = ThereAlready(job.remote);
    }
  }
  return TransferFiles(run, std::move(files), isTree, isTree ? std::string() : jobs[0].remote,
                       [&](std::size_t i) { return Store(run, jobs[i]); });
}

HdfsFailure Unreadable(const fs::path& path, const std::error_code& problem) {
  return LocalFailure("reading", Utf8Of(path), ReasonText(problem), kExitLocalFile);
}

/// What a tree of local folders holds, in the order of their names.
struct Tree {
  std::vector<Job> files;
  std::vector<std::string> emptyFolders;  // in HDFS; the others are made with their files
};

std::optional<HdfsFailure> Collect(const fs::path& folder, const std::string& remote, Tree& tree) {
  std::error_code problem;
  std::vector<fs::directory_entry> entries;
  for (fs::directory_iterator at(folder, problem), end; !problem && at != end;
       at.increment(problem)) {
    entries.push_back(*at);
  }
  if (problem) return Unreadable(folder, problem);
  std::sort(entries.begin(), entries.end());
  if (entries.empty()) tree.emptyFolders.push_back(remote);
  for (const fs::directory_entry& entry : entries) {
    const std::string name = Utf8Of(entry.path().filename());
    const std::string inner = JoinPath(remote, name);
    if (const auto mistake = FindPathProblem(inner)) {
      return LocalFailure("reading", Utf8Of(entry.path()), *mistake, kExitUsage);
    }
    if (entry.is_directory(problem) && !entry.is_symlink(problem)) {
      if (auto failure = Collect(entry.path(), inner, tree)) return failure;
    } else if (entry.is_regular_file(problem)) {
      const std::uintmax_t length = entry.file_size(problem);
      if (problem) return Unreadable(entry.path(), problem);
      if (length > kLongestUpload) return TooLong(Utf8Of(entry.path()));
      tree.files.push_back({entry.path(), Utf8Of(entry.path()), inner, length, std::nullopt});
    } else {
      return LocalFailure("reading", Utf8Of(entry.path()),
                          "it is neither a file nor a folder, or a link to a folder",
                          kExitLocalFile);
    }
  }
  return std::nullopt;
}

/// Looks up what is there already, with one question for each folder.
std::optional<HdfsFailure> FindExisting(HdfsCaller& caller, std::vector<Job>& files) {
  std::string listed;
  std::vector<FileStatus> list;
  for (Job& job : files) {
    const std::string folder = FolderOf(job.remote);
    if (folder != listed) {
      listed = folder;
      list.clear();
      auto failure = AskList(caller, folder, list);
      if (failure && !failure->IsMissing()) return failure;
    }
    const auto found = std::find_if(list.begin(), list.end(), [&job](const FileStatus& status) {
      return status.path == job.remote;
    });
    if (found != list.end() && found->IsFile()) job.remoteLength = found->length;
  }
  return std::nullopt;
}

int PutTree(const HdfsRun& run, const fs::path& folder, const std::string& remote) {
  Tree tree;
  if (auto failure = Collect(folder, remote, tree)) return run.Fail(*failure);
  if (auto failure = FindExisting(run.caller, tree.files)) return run.Fail(*failure);
  const bool makesFolders = run.Hdfs().stack == HdfsStack::kWinInet;
  if (!makesFolders && !tree.emptyFolders.empty()) {
    run.progress.Say("warning: empty folders are not made over WinHTTP, '" +
                     VisibleText(tree.emptyFolders.front()) + "' among them");
    tree.emptyFolders.clear();
  }
  for (const std::string& empty : tree.emptyFolders) {
    bool done = false;
    if (auto failure = CreateFolder(run.caller, empty, "", done)) return run.Fail(*failure);
  }
  return StoreAll(run, tree.files, true);
}

int PutFolder(const HdfsRun& run, const fs::path& folder) {
  const HdfsOptions& options = run.Hdfs();
  if (!options.recursive) {
    return run.Fail(
        LocalFailure("put", options.local, "it is a folder: type -r to put it", kExitUsage));
  }
  std::error_code problem;
  const std::string name = Utf8Of(fs::absolute(folder / "", problem).parent_path().filename());
  return PutTree(run, folder, options.intoFolder ? JoinPath(options.remote, name) : options.remote);
}

/// Finds out whether the remote path is a folder, into which the file then goes under `name` (empty
/// for the standard input, which has none), and what is there already.
std::optional<HdfsFailure> FindTarget(const HdfsRun& run, const std::string& name, Job& job) {
  const HdfsOptions& options = run.Hdfs();
  FileStatus status;
  std::optional<HdfsFailure> failure;
  bool into = options.intoFolder;
  if (!into) {
    failure = AskStatus(run.caller, job.remote, status);
    into = !failure && status.IsFolder();
  }
  if (into) {
    if (name.empty()) {
      return LocalFailure("put", options.remote, "it is a folder: type the name of the file too",
                          kExitUsage);
    }
    job.remote = JoinPath(options.remote, name);
    if (const auto mistake = FindPathProblem(job.remote)) {
      return LocalFailure("put", options.local, *mistake, kExitUsage);
    }
    failure = AskStatus(run.caller, job.remote, status);
  }
  if (failure) return failure->IsMissing() ? std::nullopt : failure;
  if (status.IsFolder()) return LocalFailure("put", job.remote, "it is a folder", kExitExists);
  job.remoteLength = status.length;
  return std::nullopt;
}

}  // namespace

int PutFiles(const HdfsRun& run) {
  const HdfsOptions& options = run.Hdfs();
  SpooledInput input;
  const bool isInput = options.local == "-";
  fs::path local = PathOf(options.local);
  std::error_code problem;
  if (isInput) {
    if (const auto mistake = input.Read(kLongestUpload)) {
      return run.Fail(LocalFailure("put", "-", *mistake + "; nothing was sent", kExitLocalFile));
    }
    local = input.Path();
  } else {
    const fs::file_status status = fs::status(local, problem);
    if (!fs::exists(status)) {
      if (!problem) problem = std::make_error_code(std::errc::no_such_file_or_directory);
      return run.Fail(Unreadable(local, problem));
    }
    if (fs::is_directory(status)) return PutFolder(run, local);
    if (!fs::is_regular_file(status)) {
      return run.Fail(LocalFailure("put", options.local,
                                   "it is no regular file: type - to send the standard input",
                                   kExitLocalFile));
    }
  }
  const std::uintmax_t length = fs::file_size(local, problem);
  if (problem) return run.Fail(Unreadable(local, problem));
  if (length > kLongestUpload) return run.Fail(TooLong(options.local));

  Job job{local, options.local, options.remote, length, std::nullopt};
  const std::string name = isInput ? std::string() : Utf8Of(local.filename());
  if (const auto failure = FindTarget(run, name, job)) return run.Fail(*failure);
  return StoreAll(run, {job}, false);
}

}  // namespace velandoc
