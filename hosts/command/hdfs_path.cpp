#include "hosts/command/hdfs_path.h"

#include <cstdint>

#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"
#include "platform/file_system.h"

namespace velandoc {
namespace {

constexpr std::size_t kLongestName = 255;  // bytes, in HDFS as in most file systems
constexpr std::string_view kPartSuffix = ".velandoc-part";
// The component writes a character below 16 with one digit behind the "%", which no server reads.
constexpr unsigned char kFirstCarried = 0x10;

std::string Quoted(std::string_view text) { return "'" + VisibleText(text) + "'"; }

/// FNV-1a: the same in every run.
std::uint64_t HashOf(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  return hash;
}

}  // namespace

std::optional<std::string> FindPathProblem(std::string_view path) {
  if (!IsUtf8(path)) return "a path in HDFS must be UTF-8 text";
  if (!path.starts_with('/')) {
    return Quoted(path) + " is no path in HDFS: it must begin with '/'";
  }
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < kFirstCarried) {
      return Quoted(path) + " holds the control character 0x" + HexText(byte, 2) +
             ", which cannot be sent";
    }
  }
  std::string_view rest = path;
  while (!rest.empty()) {
    rest.remove_prefix(1);
    const std::string_view name = rest.substr(0, rest.find('/'));
    if (name == "." || name == "..") return Quoted(path) + ": HDFS has no '.' and no '..'";
    rest.remove_prefix(name.size());
  }
  return std::nullopt;
}

std::optional<std::string> FindRenameProblem(std::string_view path, HdfsStack stack) {
  for (const OLECHAR unit : WideFromUtf8(path)) {
    const auto number = static_cast<char16_t>(unit);
    if (number >= 0x80 && stack == HdfsStack::kWinHttp) {
      return Quoted(path) +
             " holds letters that a new name cannot carry over WinHTTP: type "
             "--stack wininet";
    }
    if ((number & 0xF800) == 0xD800) {
      return Quoted(path) + " holds a letter beyond U+FFFF, which a new name cannot carry";
    }
  }
  return std::nullopt;
}

std::string CleanPath(std::string_view path) {
  std::string clean;
  for (const char c : path) {
    if (c != '/' || !clean.ends_with('/')) clean.push_back(c);
  }
  if (clean.size() > 1 && clean.ends_with('/')) clean.pop_back();
  return clean;
}

std::string JoinPath(std::string_view folder, std::string_view name) {
  std::string path(folder);
  if (!path.ends_with('/')) path.push_back('/');
  return path.append(name);
}

std::string NameOf(std::string_view path) {
  return std::string(path.substr(path.find_last_of('/') + 1));
}

std::string FolderOf(std::string_view path) {
  const std::size_t slash = path.find_last_of('/');
  return slash == 0 || slash == path.npos ? "/" : std::string(path.substr(0, slash));
}

bool IsPlainName(std::string_view name) {
  // Where a backslash separates, a colon names a drive or a stream.
  const std::string_view bad =
      kPathSeparator == OLESTR('/') ? std::string_view("/\0", 2) : std::string_view("/\0\\:", 4);
  return !name.empty() && name != "." && name != ".." && IsUtf8(name) &&
         name.find_first_of(bad) == name.npos;
}

std::string PartName(std::string_view name) {
  std::string part = "." + std::string(name) + std::string(kPartSuffix);
  if (part.size() <= kLongestName) return part;
  const std::uint64_t hash = HashOf(name);
  return "." + HexText(static_cast<unsigned>(hash >> 32), 8) +
         HexText(static_cast<unsigned>(hash), 8) + std::string(kPartSuffix);
}

}  // namespace velandoc
