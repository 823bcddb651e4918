#include "standin/hdfs_path.h"

#include <algorithm>

#include "standin/hdfs_error.h"

namespace velandoc::standin {
namespace {

constexpr std::size_t kLongestPath = 8000;
constexpr std::size_t kMostNames = 1000;

[[noreturn]] void Refuse(std::string_view text) {
  throw HdfsError(HdfsFault::kInvalidPath, "Invalid path name Invalid file name: " +
                                               std::string(text.substr(0, kLongestPath)));
}

}  // namespace

HdfsPath::HdfsPath(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) Refuse(text.substr(0, text.find('\0')));
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view name = rest.substr(0, rest.find('/'));
    rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    if (name == "." || name == "..") Refuse(text);
    if (!name.empty()) m_names.emplace_back(name);
  }
  if (text.size() > kLongestPath || m_names.size() > kMostNames)
    throw HdfsError(HdfsFault::kIo, "Pathname too long.  Limit 8000 characters, 1000 levels.");
}

HdfsPath HdfsPath::ToBeMade(std::string_view text) {
  const std::string_view withoutEnd = text.substr(0, text.find_last_not_of('/') + 1);
  if (text.find(':') != std::string_view::npos || withoutEnd.find("//") != std::string_view::npos)
    Refuse(text);
  return HdfsPath(text);
}

std::string HdfsPath::Text(std::size_t count) const {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += '/' + m_names[i];
  return text.empty() ? "/" : text;
}

}  // namespace velandoc::standin
