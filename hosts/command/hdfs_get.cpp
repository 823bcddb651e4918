// velandoc hdfs get: files from HDFS, each under a name of its own until it is whole.
#include <algorithm>

#include "hosts/command/file_status.h"
#include "hosts/command/hdfs_actions.h"
#include "hosts/command/hdfs_path.h"
#include "hosts/command/local_path.h"
#include "hosts/command/transfer_report.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

namespace fs = std::filesystem;

struct Job {
  std::string remote;
  fs::path local;
  std::uint64_t length;
};

std::optional<HdfsFailure> Local(const char* operation, const fs::path& path, std::string what) {
  return LocalFailure(operation, Utf8Of(path), std::move(what), kExitLocalFile);
}

/// Deletes what it was given, unless it was kept.
class PartFile {
 public:
  explicit PartFile(fs::path path) : m_path(std::move(path)) {}
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;
  ~PartFile() {
    std::error_code ignored;
    if (!m_path.empty()) fs::remove(m_path, ignored);
  }
  const fs::path& Path() const { return m_path; }
  std::error_code MoveTo(const fs::path& path) {
    std::error_code problem;
    fs::rename(m_path, path, problem);
    if (!problem) m_path.clear();
    return problem;
  }

 private:
  fs::path m_path;
};

/// A file can be written on while it is read, and then has another length than it was listed with.
std::optional<HdfsFailure> CheckLength(HdfsCaller& caller, const Job& job, std::uint64_t arrived) {
  if (arrived == job.length) return std::nullopt;
  FileStatus status;
  if (auto failure = AskStatus(caller, job.remote, status)) return failure;
  if (arrived == status.length) return std::nullopt;
  return LocalFailure(
      "OPEN", job.remote,
      std::to_string(arrived) + " of " + std::to_string(status.length) + " bytes arrived",
      kExitIncomplete);
}

std::optional<HdfsFailure> Fetch(HdfsCaller& caller, const Job& job) {
  PartFile part(job.local.parent_path() / PathOf(PartName(Utf8Of(job.local.filename()))));
  const Bstr partPath(WideFromUtf8(Utf8Of(part.Path())));
  std::optional<HdfsFailure> failure =
      caller.Run({"OPEN", job.remote}, [&partPath](IHdfsClient& client) {
        Bstr saved;
        return client.Download(VARIANT_FALSE, partPath.Get(), saved.Receive());
      });
  // The server did its part: what is left is the file.
  if (failure && failure->node.empty()) {
    return Local("writing", job.local, FindWriteProblem(part.Path()));
  }
  if (failure) return failure;
  std::error_code problem;
  const std::uintmax_t arrived = fs::file_size(part.Path(), problem);
  if (problem) return Local("writing", job.local, ReasonText(problem));
  if ((failure = CheckLength(caller, job, arrived))) return failure;
  problem = part.MoveTo(job.local);
  if (problem) return Local("writing", job.local, ReasonText(problem));
  return std::nullopt;
}

/// The files below `folder`, whose local folders are made on the way.
std::optional<HdfsFailure> Collect(HdfsCaller& caller, const std::string& folder,
                                   const fs::path& local, std::vector<Job>& jobs) {
  std::error_code problem;
  fs::create_directories(local, problem);
  if (problem) return Local("making", local, ReasonText(problem));
  std::vector<FileStatus> list;
  if (auto failure = AskList(caller, folder, list)) return failure;
  for (const FileStatus& status : list) {
    const fs::path inner = local / PathOf(NameOf(status.path));
    if (status.IsFile()) {
      jobs.push_back({status.path, inner, status.length});
    } else if (status.IsFolder()) {
      if (auto failure = Collect(caller, status.path, inner, jobs)) return failure;
    }
  }
  return std::nullopt;
}

bool HasLength(const Job& job) {
  std::error_code problem;
  return fs::is_regular_file(job.local, problem) &&
         fs::file_size(job.local, problem) == job.length && !problem;
}

int FetchAll(const HdfsRun& run, const std::vector<Job>& jobs, bool isTree) {
  const bool skips = isTree && !run.Hdfs().all;
  std::vector<TransferResult> files;
  files.reserve(jobs.size());
  for (const Job& job : jobs) {
    const bool isSkipped = skips && HasLength(job);
    files.push_back({job.remote, Utf8Of(job.local), job.length,
                     isSkipped ? TransferOutcome::kSkipped : TransferOutcome::kFailed,
                     std::nullopt});
  }
  return TransferFiles(run, std::move(files), isTree, isTree ? std::string() : jobs[0].remote,
                       [&](std::size_t i) { return Fetch(run.caller, jobs[i]); });
}

/// Where a file or folder named `remote` goes.
fs::path TargetOf(const HdfsOptions& options) {
  if (options.local.empty()) return PathOf(NameOf(options.remote));
  fs::path local = PathOf(options.local);
  std::error_code problem;
  const bool into =
      !local.has_filename() || (!options.recursive && fs::is_directory(local, problem));
  if (into) return local / PathOf(NameOf(options.remote));
  // What is replaced is the file, not the link to it.
  if (fs::is_symlink(local, problem)) {
    const fs::path target = fs::weakly_canonical(local, problem);
    if (!problem) local = target;
  }
  return local;
}

}  // namespace

int GetFiles(const HdfsRun& run) {
  const HdfsOptions& options = run.Hdfs();
  if (options.local == "-") return PrintFile(run);
  FileStatus status;
  if (auto failure = AskStatus(run.caller, options.remote, status)) return run.Fail(*failure);
  const fs::path target = TargetOf(options);
  std::vector<Job> jobs;
  if (status.IsFolder()) {
    if (!options.recursive) {
      return run.Fail(
          LocalFailure("get", options.remote, "it is a folder: type -r to get it", kExitUsage));
    }
    const fs::path folder =
        NameOf(options.remote).empty() && options.local.empty() ? PathOf(".") : target;
    if (auto failure = Collect(run.caller, options.remote, folder, jobs)) {
      return run.Fail(*failure);
    }
    return FetchAll(run, jobs, true);
  }
  jobs.push_back({options.remote, target, status.length});
  return FetchAll(run, jobs, false);
}

}  // namespace velandoc
