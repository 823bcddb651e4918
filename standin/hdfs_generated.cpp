#include "standin/hdfs_generated.h"

#include "standin/text.h"

namespace velandoc::standin {

std::optional<GeneratedFile> FindGenerated(const HdfsPath& path) {
  const auto& names = path.Names();
  if (!IsBelowGenerated(path) || names.size() < 3 || names.size() > 4) return std::nullopt;
  const bool isText = names[1] == "lines";
  const auto length = ParseNumber<std::uint64_t>(names[2]);
  if ((!isText && names[1] != "bytes") || !length) return std::nullopt;
  return GeneratedFile{isText ? Pattern::kLines : Pattern::kCounting, *length};
}

bool IsBelowGenerated(const HdfsPath& path) {
  return !path.IsRoot() && path.Names().front() == ".generated";
}

bool IsBelowSink(const HdfsPath& path) {
  return path.Names().size() > 1 && path.Names().front() == ".sink";
}

}  // namespace velandoc::standin
