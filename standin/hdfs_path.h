// A path within HDFS.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velandoc::standin {

class HdfsPath {
 public:
  // Slashes at the end or in a row do not count. Throws HdfsError for "." and ".." as names, for
  // bytes of zero, and for more than 8000 bytes or 1000 names.
  explicit HdfsPath(std::string_view text);

  // A path under which something is to be made: a colon and slashes in a row are no more allowed.
  static HdfsPath ToBeMade(std::string_view text);

  bool IsRoot() const { return m_names.empty(); }
  const std::vector<std::string>& Names() const { return m_names; }
  // The last name; there is none in the root.
  const std::string& Name() const { return m_names.back(); }

  // "/a/b"; "/" for the root.
  std::string Text() const { return Text(m_names.size()); }
  // Of the first names only.
  std::string Text(std::size_t count) const;

 private:
  std::vector<std::string> m_names;
};

}  // namespace velandoc::standin
