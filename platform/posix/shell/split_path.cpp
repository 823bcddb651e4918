#include "platform/posix/shell/split_path.h"

#include <algorithm>

namespace velandoc {

PathParts SplitPath(WideView path) {
  PathParts parts;
  if (path.size() >= 2 && path[1] == u':') {
    parts.drive = path.substr(0, 2);
    path.remove_prefix(2);
  }
  const std::size_t separator = path.find_last_of(u"\\/");
  const std::size_t nameAt = separator == WideView::npos ? 0 : separator + 1;
  parts.folder = path.substr(0, nameAt);
  path.remove_prefix(nameAt);
  const std::size_t dot = std::min(path.rfind(u'.'), path.size());
  parts.name = path.substr(0, dot);
  parts.extension = path.substr(dot);
  return parts;
}

}  // namespace velandoc
