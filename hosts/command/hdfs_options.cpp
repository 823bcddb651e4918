#include "hosts/command/hdfs_options.h"

#include <algorithm>

#include "hosts/command/hdfs_path.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

std::string Quoted(std::string_view text) { return "'" + VisibleText(text) + "'"; }

/// The user's name goes into the URL as it is.
std::optional<std::string> FindUserProblem(const std::string& user) {
  const bool good = IsUtf8(user) && std::none_of(user.begin(), user.end(), [](char c) {
                      return static_cast<unsigned char>(c) <= 0x20 || c == '&' || c == '#' ||
                             c == '%' || c == '+' || c == '?';
                    });
  if (good) return std::nullopt;
  return Quoted(user) + " is no user's name: it goes into the URL as it is";
}

std::optional<std::string> FindPermissionProblem(const std::string& permission) {
  const bool good =
      permission.size() == 3 && std::all_of(permission.begin(), permission.end(),
                                            [](char c) { return c >= '0' && c <= '7'; });
  if (good || permission.empty()) return std::nullopt;
  return Quoted(permission) + " are no permissions: type three digits from 0 to 7, such as 644";
}

std::optional<std::string> FindResolveProblem(const std::string& word) {
  const std::size_t equals = word.find('=');
  const bool good = equals != word.npos && equals != 0 && equals + 1 != word.size() &&
                    word.find_first_of(", \t=", equals + 1) == word.npos &&
                    word.find_first_of(", \t") == word.npos;
  if (good) return std::nullopt;
  return Quoted(word) + " gives no name an address: type NAME=ADDRESS";
}

std::optional<std::string> ReadPath(std::string& path) {
  if (auto problem = FindPathProblem(path)) return problem;
  path = CleanPath(path);
  return std::nullopt;
}

}  // namespace

std::optional<std::string> FinishHdfsOptions(HdfsOptions& options) {
  if (options.baseUrl.empty()) {
    return "no name node is named: type --base-url URL or set VELANDOC_HDFS_URL";
  }
  if (auto problem = ReadNameNodes(options.baseUrl, options.nodes)) return problem;
  options.stack = options.stackWord == "winhttp" ? HdfsStack::kWinHttp : HdfsStack::kWinInet;
  if (auto problem = FindUserProblem(options.user)) return problem;
  if (auto problem = FindPermissionProblem(options.permission)) return problem;
  for (const std::string& word : options.resolve) {
    if (auto problem = FindResolveProblem(word)) return problem;
  }
  if (!IsUtf8(options.local)) return "a local path must be UTF-8 text";
  if (options.action == HdfsAction::kVerify) return std::nullopt;
  options.intoFolder = options.remote.ends_with('/');
  if (auto problem = ReadPath(options.remote)) return problem;
  const bool changes = options.action == HdfsAction::kRemove ||
                       options.action == HdfsAction::kMove ||
                       options.action == HdfsAction::kMakeFolder;
  if (changes && options.remote == "/") return "the root folder is there and stays there";
  if (options.action == HdfsAction::kMakeFolder && options.stack == HdfsStack::kWinHttp) {
    return "over WinHTTP the component asks for a folder in a way that servers refuse: type "
           "--stack wininet";
  }
  if (options.action != HdfsAction::kMove) return std::nullopt;
  if (auto problem = ReadPath(options.destination)) return problem;
  return FindRenameProblem(options.destination, options.stack);
}

}  // namespace velandoc
