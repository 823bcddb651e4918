// Which files of this machine lie on a WebDAV server: what davfs2 and GVfs have mounted.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/posix/shell/webdav_place.h"

namespace velandoc {

/// Where the file `path`, absolute and without "." and "..", lies on a WebDAV server, by a mount
/// table as /proc/self/mountinfo shows it; none if it lies on something else. The innermost mount
/// counts, of several at one folder the last.
///
/// A WebDAV mount is a FUSE or davfs mount whose source is an http or https URL (davfs2), or GVfs's
/// one for all its shares, in which each has a folder (see PlaceOfGvfsFolder).
std::optional<WebDavPlace> FindWebDavPlace(std::string_view path, std::string_view mountInfo);

}  // namespace velandoc
