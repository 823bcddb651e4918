#include "platform/posix/shell/local_path.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/posix/shell/mount_table.h"

namespace velandoc {
namespace {

std::string ReadMountInfo() {
  const std::ifstream stream("/proc/self/mountinfo", std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

}  // namespace

std::optional<WebDavPlace> PlaceOfLocalPath(const std::string& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  if (error) return std::nullopt;
  const std::string mounts = ReadMountInfo();
  auto place = FindWebDavPlace(absolute.lexically_normal().native(), mounts);
  if (place) return place;
  const std::filesystem::path followed = std::filesystem::weakly_canonical(absolute, error);
  if (error) return std::nullopt;
  return FindWebDavPlace(followed.native(), mounts);
}

}  // namespace velandoc
