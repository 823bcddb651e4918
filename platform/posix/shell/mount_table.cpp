#include "platform/posix/shell/mount_table.h"

#include <array>
#include <sstream>
#include <vector>

namespace velandoc {
namespace {

struct Mount {
  std::string root;    // the part of the file system that is mounted
  std::string folder;  // where
  std::string type;
  std::string source;
};

/// The kernel writes blanks, line feeds, backslashes and "#" as "\" and three octal digits.
std::string Unescape(std::string_view text) {
  const auto isOctal = [](char c) { return c >= '0' && c <= '7'; };
  std::string plain;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '\\' && at + 3 < text.size() && isOctal(text[at + 1]) &&
        isOctal(text[at + 2]) && isOctal(text[at + 3])) {
      plain += static_cast<char>((text[at + 1] - '0') * 64 + (text[at + 2] - '0') * 8 +
                                 (text[at + 3] - '0'));
      at += 3;
    } else {
      plain += text[at];
    }
  }
  return plain;
}

/// 36 35 98:0 /root /mount/point rw,noatime master:1 - type source options
///            ^3    ^4           ^5                    ^ behind the lone "-"
std::optional<Mount> ReadLine(const std::string& line) {
  std::istringstream stream(line);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  for (std::size_t at = 6; at + 2 < words.size(); ++at) {
    if (words[at] != "-") continue;
    return Mount{Unescape(words[3]), Unescape(words[4]), words[at + 1], Unescape(words[at + 2])};
  }
  return std::nullopt;
}

/// What `path` is below `folder`: empty, or "/" and the rest; none if it is not below.
std::optional<std::string_view> Below(std::string_view path, std::string_view folder) {
  if (folder == "/") return path;
  if (path.substr(0, folder.size()) != folder) return std::nullopt;
  path.remove_prefix(folder.size());
  if (!path.empty() && path.front() != '/') return std::nullopt;
  return path;
}

std::optional<WebDavPlace> PlaceInMount(const Mount& mount, std::string_view below) {
  // What lies above a bind mount's folder belongs to the path on the server too.
  std::string path = mount.root == "/" ? std::string() : mount.root;
  path += below;
  std::optional<WebDavPlace> place;
  if (mount.type == "fuse.gvfsd-fuse") {
    const std::size_t folderAt = path.find_first_not_of('/');
    if (folderAt == std::string::npos) return std::nullopt;
    const std::size_t folderEnd = std::min(path.find('/', folderAt), path.size());
    place = PlaceOfGvfsFolder(std::string_view(path).substr(folderAt, folderEnd - folderAt));
    path.erase(0, folderEnd);
  } else if (mount.type == "fuse" || mount.type == "davfs" || mount.type == "fuse.davfs") {
    place = PlaceOfShareUrl(mount.source);
  }
  if (place) place->Append(path);
  return place;
}

}  // namespace

std::optional<WebDavPlace> FindWebDavPlace(std::string_view path, std::string_view mountInfo) {
  std::optional<Mount> innermost;
  std::istringstream lines{std::string(mountInfo)};
  for (std::string line; std::getline(lines, line);) {
    std::optional<Mount> mount = ReadLine(line);
    if (!mount || !Below(path, mount->folder)) continue;
    if (!innermost || mount->folder.size() >= innermost->folder.size()) innermost.swap(mount);
  }
  if (!innermost) return std::nullopt;
  return PlaceInMount(*innermost, *Below(path, innermost->folder));
}

}  // namespace velandoc
