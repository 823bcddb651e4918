// Paths in HDFS, in UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "hosts/command/hdfs_options.h"

namespace velandoc {

/// Why `path` cannot be asked for, as one line without a full stop; nothing if it can.
std::optional<std::string> FindPathProblem(std::string_view path);

/// Why nothing can be renamed to `path`; nothing if it can. The component sends a new name's
/// letters one by one, so those beyond the basic plane are lost. Over WinHTTP those beyond ASCII
/// arrive as others, because they are escaped twice.
std::optional<std::string> FindRenameProblem(std::string_view path, HdfsStack stack);

/// Without empty names and without a "/" at its end; "/" stays.
std::string CleanPath(std::string_view path);

/// "/a" and "b" as "/a/b".
std::string JoinPath(std::string_view folder, std::string_view name);
/// "/a/b" as "b"; empty for "/".
std::string NameOf(std::string_view path);
/// "/a/b" as "/a"; "/" for "/a" and for "/".
std::string FolderOf(std::string_view path);

/// Whether a server's word is one name, and one that a local folder can have: with a separator, a
/// drive or ".." in it a file would be written somewhere else.
bool IsPlainName(std::string_view name);

/// The name under which a transfer writes in the folder of a file named `name` until it is whole.
/// The same each time, so that what a broken transfer left behind is overwritten by the next.
std::string PartName(std::string_view name);

}  // namespace velandoc
