#include "hosts/command/file_status.h"

#include "hosts/command/hdfs_path.h"
#include "hosts/command/visible_text.h"

namespace velandoc {
namespace {

using Json = nlohmann::ordered_json;

constexpr Moment kUnixEpoch = 116444736000000000;
constexpr Moment kUnitsPerMillisecond = 10000;
// Behind these no calendar of ours goes on.
constexpr std::int64_t kLatestMilliseconds = 253402300799999;  // the year 9999

std::string TextOf(const Json& object, const char* key) {
  const auto found = object.find(key);
  return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

std::int64_t NumberOf(const Json& object, const char* key) {
  const auto found = object.find(key);
  return found != object.end() && found->is_number_integer() ? found->get<std::int64_t>() : 0;
}

bool ReadStatus(const Json& json, FileStatus& status) {
  if (!json.is_object()) return false;
  status.type = TextOf(json, "type");
  const std::int64_t length = NumberOf(json, "length");
  if (status.type.empty() || length < 0) return false;
  status.length = static_cast<std::uint64_t>(length);
  status.owner = TextOf(json, "owner");
  status.group = TextOf(json, "group");
  status.permission = TextOf(json, "permission");
  status.replication =
      static_cast<std::uint64_t>(std::max<std::int64_t>(NumberOf(json, "replication"), 0));
  const std::int64_t modified = NumberOf(json, "modificationTime");
  if (modified > 0 && modified <= kLatestMilliseconds) {
    status.modified = kUnixEpoch + modified * kUnitsPerMillisecond;
  }
  status.raw = json;
  return true;
}

HdfsFailure Unreadable(const char* operation, const std::string& path) {
  return LocalFailure(operation, path, "the answer is not what WebHDFS answers", kExitNo);
}

/// The value of `outer` in an answer; null if there is none.
Json Inner(const std::string& text, const char* outer) {
  const Json json = Json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (!json.is_object()) return nullptr;
  const auto found = json.find(outer);
  return found != json.end() ? *found : Json();
}

}  // namespace

std::optional<HdfsFailure> AskStatus(HdfsCaller& caller, const std::string& path,
                                     FileStatus& status) {
  constexpr const char* kOperation = "GETFILESTATUS";
  std::string text;
  if (auto failure = caller.ReadText(kOperation, path, text)) return failure;
  status.path = path;
  if (!ReadStatus(Inner(text, "FileStatus"), status)) return Unreadable(kOperation, path);
  return std::nullopt;
}

std::optional<HdfsFailure> AskList(HdfsCaller& caller, const std::string& path,
                                   std::vector<FileStatus>& list) {
  constexpr const char* kOperation = "LISTSTATUS";
  std::string text;
  if (auto failure = caller.ReadText(kOperation, path, text)) return failure;
  const Json statuses = Inner(text, "FileStatuses");
  if (!statuses.is_object() || !statuses.contains("FileStatus") ||
      !statuses["FileStatus"].is_array()) {
    return Unreadable(kOperation, path);
  }
  list.clear();
  for (const Json& json : statuses["FileStatus"]) {
    FileStatus status;
    if (!ReadStatus(json, status)) return Unreadable(kOperation, path);
    const std::string name = TextOf(json, "pathSuffix");
    if (!name.empty() && !IsPlainName(name)) {
      return LocalFailure(kOperation, path,
                          "the server names '" + VisibleText(name) + "', which is no file's name",
                          kExitNo);
    }
    // Of a file there is one entry, without a name.
    status.path = name.empty() ? path : JoinPath(path, name);
    list.push_back(std::move(status));
  }
  return std::nullopt;
}

}  // namespace velandoc
