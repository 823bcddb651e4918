// Files of this machine that lie on a WebDAV server.
#pragma once

#include <optional>
#include <string>

#include "platform/posix/shell/webdav_place.h"

namespace velandoc {

/// Where a file lies on a WebDAV server, by the mounts of this process; none if it does not. A
/// relative path counts from the current folder. The file need not exist; where the path as it
/// stands is below no WebDAV mount, its symbolic links are followed.
std::optional<WebDavPlace> PlaceOfLocalPath(const std::string& path);

}  // namespace velandoc
