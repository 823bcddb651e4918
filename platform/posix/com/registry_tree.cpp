#include "platform/posix/com/registry_tree.h"

#include <algorithm>

#include "platform/posix/com/case_folding.h"
#include "platform/posix/com/utf8.h"

namespace velandoc {

RegistryKey::RegistryKey(const RegistryKey& other) : name(other.name), values(other.values) {
  for (const auto& [folded, key] : other.keys) {
    keys.emplace(folded, std::make_unique<RegistryKey>(*key));
  }
}

bool IsValidName(WideView name, std::size_t limit) {
  const bool hasControl =
      std::any_of(name.begin(), name.end(), [](OLECHAR unit) { return unit < ' '; });
  return name.size() <= limit && !hasControl && IsWellFormed(name);
}

std::vector<WideView> SplitKeyPath(WideView path) {
  std::vector<WideView> levels;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find(OLECHAR{'\\'}), path.size());
    if (end != 0) levels.push_back(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return levels;
}

const RegistryKey* FindKey(const RegistryKey& root, WideView path) {
  const RegistryKey* key = &root;
  for (const WideView level : SplitKeyPath(path)) {
    const auto found = key->keys.find(FoldCase(level));
    if (found == key->keys.end()) return nullptr;
    key = found->second.get();
  }
  return key;
}

RegistryKey* FindKey(RegistryKey& root, WideView path) {
  return const_cast<RegistryKey*>(FindKey(static_cast<const RegistryKey&>(root), path));
}

RegistryKey* CreateKey(RegistryKey& root, WideView path, bool* created) {
  const std::vector<WideView> levels = SplitKeyPath(path);
  const auto isValid = [](WideView name) { return IsValidName(name, kMaxKeyName); };
  if (levels.size() > kMaxKeyDepth || !std::all_of(levels.begin(), levels.end(), isValid)) {
    return nullptr;
  }
  RegistryKey* key = &root;
  if (created != nullptr) *created = false;
  for (const WideView level : levels) {
    std::unique_ptr<RegistryKey>& below = key->keys[FoldCase(level)];
    if (created != nullptr) *created = below == nullptr;
    if (below == nullptr) {
      below = std::make_unique<RegistryKey>();
      below->name = level;
    }
    key = below.get();
  }
  return key;
}

}  // namespace velandoc
