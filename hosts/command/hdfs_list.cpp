// velandoc hdfs ls and stat.
#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "hosts/command/file_status.h"
#include "hosts/command/hdfs_actions.h"
#include "hosts/command/hdfs_path.h"
#include "hosts/command/visible_text.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

/// "755" as "rwxr-xr-x", with the sticky bit of "1777" as its "t".
std::string PermissionText(const std::string& octal) {
  std::string digits = octal;
  digits.insert(0, digits.size() < 3 ? 3 - digits.size() : 0, '0');
  std::string text;
  for (const char digit : digits.substr(digits.size() - 3)) {
    if (digit < '0' || digit > '7') return octal;
    const int bits = digit - '0';
    text += (bits & 4) != 0 ? 'r' : '-';
    text += (bits & 2) != 0 ? 'w' : '-';
    text += (bits & 1) != 0 ? 'x' : '-';
  }
  if (digits.size() == 4 && digits[0] == '1') text.back() = text.back() == 'x' ? 't' : 'T';
  return text;
}

char TypeLetter(const FileStatus& status) {
  if (status.IsFolder()) return 'd';
  return status.IsFile() ? '-' : 'l';
}

std::string TimeOf(const FileStatus& status) {
  return status.modified ? LocalText(*status.modified) : "-";
}

std::string ShownName(const FileStatus& status, const std::string& listed) {
  // A file's own entry has its path, as typed.
  const std::string name = status.path == listed ? status.path : NameOf(status.path);
  return VisibleText(name) + (status.IsFolder() ? "/" : "");
}

/// The server's own keys behind the path.
nlohmann::ordered_json StatusJson(const FileStatus& status) {
  nlohmann::ordered_json json = {{"path", status.path}};
  json.update(status.raw);
  return json;
}

}  // namespace

int ListFolder(const HdfsRun& run) {
  const std::string& path = run.Hdfs().remote;
  std::vector<FileStatus> list;
  if (auto failure = AskList(run.caller, path, list)) return run.Fail(*failure);
  if (run.options.json) {
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (const FileStatus& status : list) json.push_back(StatusJson(status));
    run.WriteJson(json);
    return kExitSuccess;
  }
  std::vector<std::vector<std::string>> rows;
  for (const FileStatus& status : list) {
    if (!run.Hdfs().longForm) {
      rows.push_back({ShownName(status, path)});
      continue;
    }
    rows.push_back({TypeLetter(status) + PermissionText(status.permission),
                    status.IsFile() ? std::to_string(status.replication) : "-",
                    VisibleText(status.owner), VisibleText(status.group),
                    std::to_string(status.length), TimeOf(status), ShownName(status, path)});
  }
  WriteOutput(AlignRows(rows));
  return kExitSuccess;
}

int ShowFileStatus(const HdfsRun& run) {
  FileStatus status;
  if (auto failure = AskStatus(run.caller, run.Hdfs().remote, status)) return run.Fail(*failure);
  if (run.options.json) {
    run.WriteJson(StatusJson(status));
    return kExitSuccess;
  }
  std::vector<std::vector<std::string>> rows = {
      {"path", VisibleText(status.path)},
      {"type", VisibleText(status.type)},
      {"length", std::to_string(status.length)},
      {"modified", TimeOf(status)},
      {"permission", status.permission + " (" + PermissionText(status.permission) + ")"},
      {"owner", VisibleText(status.owner)},
      {"group", VisibleText(status.group)},
  };
  constexpr const char* kShown[] = {"type",  "length", "modificationTime", "permission",
                                    "owner", "group",  "pathSuffix"};
  for (const auto& [key, value] : status.raw.items()) {
    if (std::find(std::begin(kShown), std::end(kShown), key) != std::end(kShown)) continue;
    rows.push_back({VisibleText(key),
                    VisibleText(value.is_string() ? value.get<std::string>() : value.dump())});
  }
  WriteOutput(AlignRows(rows));
  return kExitSuccess;
}

}  // namespace velandoc
