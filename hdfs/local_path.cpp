#include "hdfs/local_path.h"

#include <array>

#include "platform/file_system.h"

namespace velandoc {
namespace {

constexpr DWORD kPathCapacity = 260;

}  // namespace

WideString MakeLocalPath(WideView hdfsPath, bool random, WideView localPath) {
  if (!localPath.empty()) return WideString(localPath);
  const std::size_t slash = hdfsPath.rfind(OLECHAR{'/'});
  if (slash == WideView::npos) return {};
  const WideView name = hdfsPath.substr(slash + 1);
  if (name.empty()) return {};
  FileSystem& files = CurrentPort<FileSystem>();
  std::array<OLECHAR, kPathCapacity> folder{};
  const DWORD length = files.GetTempPathW(kPathCapacity, folder.data());
  if (length == 0 || length >= kPathCapacity) return {};
  if (random) {
    std::array<OLECHAR, kPathCapacity> made{};
    if (files.GetTempFileNameW(folder.data(), OLESTR("hdfs"), made.data()) == 0) return {};
    return made.data();
  }
  WideString path = folder.data();
  if (path.back() != kPathSeparator) path += kPathSeparator;
  return path.append(name);
}

}  // namespace velandoc
