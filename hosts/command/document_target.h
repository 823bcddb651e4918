// The TARGET of the doc commands: a document's URL, or its path on a WebDAV share.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velandoc {

/// Whether `target` is meant as a URL: it has a scheme with "://" behind it, or begins with "http:"
/// or "https:". All else is a path.
bool IsUrlTarget(std::string_view target);

/// Why `target` cannot be opened, as one line without a full stop; nothing if it may be tried.
std::optional<std::string> FindTargetProblem(std::string_view target);

/// A path made absolute by the current folder; UNC text and paths that begin with a drive letter
/// stand as they are.
std::string AbsolutePath(std::string_view path);

}  // namespace velandoc
