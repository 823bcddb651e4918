// The calls of the system below HdfsFolder. Each looks at one name in an open folder and never
// follows a link.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <vector>

#include "standin/unique_fd.h"

namespace velandoc::standin {

// Throws the HdfsError that errno stands for.
[[noreturn]] void ThrowDiskError(const std::string& path);

// A file or folder; nothing for links, devices and what is not there.
std::optional<struct stat> StatusIn(const UniqueFd& folder, const std::string& name);
struct stat StatusOf(const UniqueFd& open);

// Not open if it is no folder.
UniqueFd OpenFolderIn(const UniqueFd& folder, const std::string& name);
UniqueFd CopyOf(const UniqueFd& folder);

// Everything but links, devices and names that are no UTF-8; 100,000 at the most, else HdfsError.
std::vector<std::string> NamesIn(const UniqueFd& folder);

// A folder with all that it holds.
void RemoveTree(const UniqueFd& folder, const std::string& name);
// All that a folder holds, links and devices among it.
void RemoveAllIn(const UniqueFd& folder);

}  // namespace velandoc::standin
