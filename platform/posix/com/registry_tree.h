// A registry hive in memory.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "platform/posix/com/registry.h"
#include "platform/text.h"

namespace velandoc {

// Windows' limits for names and depth; ours for the data.
inline constexpr std::size_t kMaxKeyName = 255;
inline constexpr std::size_t kMaxKeyDepth = 512;
inline constexpr std::size_t kMaxValueName = 16383;
inline constexpr std::size_t kMaxValueData = std::size_t{1} << 20;

struct RegistryValue {
  WideString name;
  DWORD type = REG_NONE;
  std::vector<BYTE> data;
};

/// A key with all below it. The maps' keys are the names with their case folded.
struct RegistryKey {
  RegistryKey() = default;
  /// A deep copy.
  RegistryKey(const RegistryKey& other);
  RegistryKey(RegistryKey&&) = default;
  RegistryKey& operator=(RegistryKey&&) = default;

  WideString name;
  std::map<WideString, RegistryValue> values;
  std::map<WideString, std::unique_ptr<RegistryKey>> keys;
};

/// Whether a name can stand in the file: no control characters, no unpaired surrogates, within the
/// limit.
bool IsValidName(WideView name, std::size_t limit);

/// The levels of a path; empty ones are skipped.
std::vector<WideView> SplitKeyPath(WideView path);

/// The key at `path` below `root`, `root` itself for an empty one; null if there is none.
const RegistryKey* FindKey(const RegistryKey& root, WideView path);
RegistryKey* FindKey(RegistryKey& root, WideView path);

/// As FindKey, making what is missing. Null if a name is not valid or the path too deep. `created`
/// unless null: whether the last level is new.
RegistryKey* CreateKey(RegistryKey& root, WideView path, bool* created);

}  // namespace velandoc
