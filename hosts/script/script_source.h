// A script file, read and decoded.
#pragma once

#include <string>
#include <vector>

namespace velandoc {

struct ScriptSource {
  std::string path;      // as typed
  std::string name;      // the last part of it
  std::string fullPath;  // absolute
  std::string text;      // UTF-8, without a byte order mark
};

/// Reads UTF-8 with or without a byte order mark, and UTF-16 with one. False if the file cannot be
/// read or is neither, or is longer than 64 MiB; `problem` then says why in the system's or our own
/// words.
bool ReadScript(const std::string& path, ScriptSource& source, std::string& problem);

}  // namespace velandoc
