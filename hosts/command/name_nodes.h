// The name nodes of one HDFS: an active one, and standbys that may take its place.
#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velandoc {

struct NameNode {
  std::string url;                     // "http://name.example.com:9870", as typed
  std::optional<unsigned short> port;  // as typed; the component has its own for a URL without one
};

/// Takes "URL,URL,..." apart. The mistake, as one line without a full stop; nothing if there is
/// none: `nodes` then holds at least one.
std::optional<std::string> ReadNameNodes(std::string_view text, std::vector<NameNode>& nodes);

/// Shared by the threads of a command, so that all of them ask the one that answered last.
class NameNodes {
 public:
  explicit NameNodes(std::vector<NameNode> nodes) : m_nodes(std::move(nodes)) {}

  const std::vector<NameNode>& All() const { return m_nodes; }
  std::size_t Active() const { return m_active; }
  void SetActive(std::size_t index) { m_active = index; }

 private:
  const std::vector<NameNode> m_nodes;
  std::atomic<std::size_t> m_active{0};
};

}  // namespace velandoc
