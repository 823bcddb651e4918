// Files that nobody stored: "/.generated/bytes/N" has N bytes, byte i being i modulo 251, and
// "/.generated/lines/N" has N bytes of text in lines of 64. A further name may stand behind, for
// the sake of clients that name a local file after it.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "standin/hdfs_path.h"
#include "standin/response.h"

namespace velandoc::standin {

struct GeneratedFile {
  Pattern pattern = Pattern::kCounting;
  std::uint64_t length = 0;
};

std::optional<GeneratedFile> FindGenerated(const HdfsPath& path);

// Nothing can be made or changed there.
bool IsBelowGenerated(const HdfsPath& path);

// What is written there is not kept: a file as long as that, of zeros, takes its place.
bool IsBelowSink(const HdfsPath& path);

}  // namespace velandoc::standin
