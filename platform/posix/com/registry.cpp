// The registry's functions over the two files.
#include "platform/posix/com/registry.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <new>
#include <set>
#include <string>
#include <utility>

#include "platform/posix/com/case_folding.h"
#include "platform/posix/com/registry_file.h"

using velandoc::ChangeHive;
using velandoc::FindKey;
using velandoc::FoldCase;
using velandoc::Hive;
using velandoc::LoadHive;
using velandoc::RegistryKey;
using velandoc::RegistryValue;
using velandoc::WideString;
using velandoc::WideView;

namespace {

enum class Root { kMachine, kUser, kClasses };

constexpr LPCOLESTR kClassesPath = OLESTR("Software\\Classes");

LONG Result(DWORD error) { return static_cast<LONG>(error); }

}  // namespace

/// A key by its place. Nothing of the file is kept: the next call looks again.
struct HKEY__ {
  Root root;
  WideString path;  // without a backslash at either end

  bool IsRoot() const { return path.empty(); }
  /// The path in a hive's file.
  WideString HivePath() const {
    if (root != Root::kClasses) return path;
    return path.empty() ? WideString(kClassesPath) : kClassesPath + (OLESTR("\\") + path);
  }
  /// Where changes go.
  Hive WrittenHive() const { return root == Root::kUser ? Hive::kUser : Hive::kMachine; }
};

namespace {

std::mutex handlesMutex;
std::set<HKEY> handles;

/// The place that a handle and a path below it name; false for a handle that is not open.
bool Resolve(HKEY handle, LPCWSTR subKey, HKEY__& place) {
  if (handle == HKEY_CLASSES_ROOT) {
    place = {Root::kClasses, {}};
  } else if (handle == HKEY_CURRENT_USER) {
    place = {Root::kUser, {}};
  } else if (handle == HKEY_LOCAL_MACHINE) {
    place = {Root::kMachine, {}};
  } else {
    const std::lock_guard lock(handlesMutex);
    if (handles.count(handle) == 0) return false;
    place = *handle;
  }
  if (subKey != nullptr) {
    for (const WideView level : velandoc::SplitKeyPath(subKey)) {
      if (!place.path.empty()) place.path += OLESTR('\\');
      place.path += level;
    }
  }
  return true;
}

void Open(HKEY__ place, HKEY* result) {
  const HKEY handle = new HKEY__(std::move(place));
  const std::lock_guard lock(handlesMutex);
  handles.insert(handle);
  *result = handle;
}

/// The one or two keys behind a place, the user's first: under HKEY_CLASSES_ROOT both hives speak.
struct View {
  std::shared_ptr<const RegistryKey> hives[2];
  const RegistryKey* keys[2] = {nullptr, nullptr};

  bool Exists() const { return keys[0] != nullptr || keys[1] != nullptr; }
};

/// What the hives hold of a key, which need not be there.
DWORD LoadView(HKEY handle, LPCWSTR subKey, HKEY__& place, View& view) {
  if (!Resolve(handle, subKey, place)) return ERROR_INVALID_HANDLE;
  constexpr Hive kOrder[] = {Hive::kUser, Hive::kMachine};
  const WideString path = place.HivePath();
  for (int i = 0; i < 2; ++i) {
    const bool isAsked = place.root == Root::kClasses || place.WrittenHive() == kOrder[i];
    if (!isAsked) continue;
    const DWORD error = LoadHive(kOrder[i], view.hives[i]);
    if (error != ERROR_SUCCESS) return error;
    view.keys[i] = FindKey(*view.hives[i], path);
  }
  return ERROR_SUCCESS;
}

/// Copies a value out as RegQueryValueExW and RegEnumValueW do.
DWORD CopyData(const RegistryValue& value, DWORD* type, BYTE* data, DWORD* size) {
  if (data != nullptr && size == nullptr) return ERROR_INVALID_PARAMETER;
  if (type != nullptr) *type = value.type;
  if (size == nullptr) return ERROR_SUCCESS;
  const DWORD room = std::exchange(*size, static_cast<DWORD>(value.data.size()));
  if (data == nullptr) return ERROR_SUCCESS;
  if (room < value.data.size()) return ERROR_MORE_DATA;
  if (!value.data.empty()) std::memcpy(data, value.data.data(), value.data.size());
  return ERROR_SUCCESS;
}

DWORD CopyName(WideView name, LPWSTR buffer, DWORD* length) {
  if (buffer == nullptr || length == nullptr) return ERROR_INVALID_PARAMETER;
  if (*length <= name.size()) return ERROR_MORE_DATA;
  std::copy(name.begin(), name.end(), buffer);
  buffer[name.size()] = 0;
  *length = static_cast<DWORD>(name.size());
  return ERROR_SUCCESS;
}

/// The `index`-th entry of the union of two maps, by folded name; null behind the last.
template <class Map>
const typename Map::mapped_type* EntryOfUnion(const Map* first, const Map* second, DWORD index) {
  std::map<WideView, const typename Map::mapped_type*> all;
  for (const Map* map : {first, second}) {
    if (map == nullptr) continue;
    for (const auto& [folded, entry] : *map) all.emplace(folded, &entry);
  }
  if (index >= all.size()) return nullptr;
  return std::next(all.begin(), static_cast<std::ptrdiff_t>(index))->second;
}

/// A change of one key, which must be there; under HKEY_CLASSES_ROOT a key that only the user has
/// is made.
template <class Change>
DWORD ChangeKey(HKEY handle, const Change& change) {
  HKEY__ place{};
  if (!Resolve(handle, nullptr, place)) return ERROR_INVALID_HANDLE;
  return ChangeHive(place.WrittenHive(), [&](RegistryKey& hive) -> DWORD {
    RegistryKey* key = FindKey(hive, place.HivePath());
    if (key == nullptr && (place.root == Root::kClasses || place.IsRoot())) {
      key = velandoc::CreateKey(hive, place.HivePath(), nullptr);
    }
    return key != nullptr ? change(*key) : ERROR_KEY_DELETED;
  });
}

DWORD DeleteKey(HKEY handle, LPCWSTR subKey, bool withSubkeys) {
  HKEY__ place{};
  if (!Resolve(handle, subKey, place)) return ERROR_INVALID_HANDLE;
  if (place.IsRoot()) return ERROR_ACCESS_DENIED;
  const WideString path = place.HivePath();
  const std::size_t cut = std::min(path.rfind(OLECHAR{'\\'}), path.size());
  const bool hasParent = cut != path.size();
  const WideView parentPath = hasParent ? WideView(path).substr(0, cut) : WideView();
  const WideView name = hasParent ? WideView(path).substr(cut + 1) : WideView(path);
  return ChangeHive(place.WrittenHive(), [&](RegistryKey& hive) -> DWORD {
    RegistryKey* const parent = FindKey(hive, parentPath);
    if (parent == nullptr) return ERROR_FILE_NOT_FOUND;
    const auto found = parent->keys.find(FoldCase(name));
    if (found == parent->keys.end()) return ERROR_FILE_NOT_FOUND;
    if (!withSubkeys && !found->second->keys.empty()) return ERROR_ACCESS_DENIED;
    parent->keys.erase(found);
    return ERROR_SUCCESS;
  });
}

/// What every function does around its work.
template <class Work>
LONG Guard(const Work& work) noexcept {
  try {
    return Result(work());
  } catch (const std::bad_alloc&) {
    return Result(ERROR_NOT_ENOUGH_MEMORY);
  }
}

}  // namespace

STDAPI_(LONG)
RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR, DWORD, REGSAM,
                SECURITY_ATTRIBUTES*, HKEY* result, DWORD* disposition) {
  return Guard([&]() -> DWORD {
    if (subKey == nullptr || result == nullptr || reserved != 0) return ERROR_INVALID_PARAMETER;
    HKEY__ place{};
    if (!Resolve(key, subKey, place)) return ERROR_INVALID_HANDLE;
    bool created = false;
    const DWORD error = ChangeHive(place.WrittenHive(), [&](RegistryKey& hive) -> DWORD {
      const RegistryKey* made = velandoc::CreateKey(hive, place.HivePath(), &created);
      return made != nullptr ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
    });
    if (error != ERROR_SUCCESS) return error;
    if (disposition != nullptr) {
      *disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
    }
    Open(std::move(place), result);
    return ERROR_SUCCESS;
  });
}

STDAPI_(LONG) RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD, REGSAM, HKEY* result) {
  return Guard([&]() -> DWORD {
    if (result == nullptr) return ERROR_INVALID_PARAMETER;
    HKEY__ place{};
    View view;
    if (const DWORD error = LoadView(key, subKey, place, view); error != ERROR_SUCCESS)
      return error;
    if (!view.Exists() && !place.IsRoot()) return ERROR_FILE_NOT_FOUND;
    Open(std::move(place), result);
    return ERROR_SUCCESS;
  });
}

STDAPI_(LONG) RegCloseKey(HKEY key) {
  return Guard([&]() -> DWORD {
    if (key == HKEY_CLASSES_ROOT || key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE) {
      return ERROR_SUCCESS;
    }
    const std::lock_guard lock(handlesMutex);
    if (handles.erase(key) == 0) return ERROR_INVALID_HANDLE;
    delete key;
    return ERROR_SUCCESS;
  });
}

STDAPI_(LONG)
RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
  return Guard([&]() -> DWORD {
    const WideView valueName = name != nullptr ? WideView(name) : WideView();
    if (reserved != 0 || (data == nullptr && size != 0) || size > velandoc::kMaxValueData ||
        !velandoc::IsValidName(valueName, velandoc::kMaxValueName)) {
      return ERROR_INVALID_PARAMETER;
    }
    return ChangeKey(key, [&](RegistryKey& changed) -> DWORD {
      RegistryValue& value = changed.values[FoldCase(valueName)];
      if (value.name.empty()) value.name = valueName;
      value.type = type;
      value.data.assign(data, data + size);
      return ERROR_SUCCESS;
    });
  });
}

STDAPI_(LONG)
RegQueryValueExW(HKEY key, LPCWSTR name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size) {
  return Guard([&]() -> DWORD {
    if (reserved != nullptr) return ERROR_INVALID_PARAMETER;
    HKEY__ place{};
    View view;
    if (const DWORD error = LoadView(key, nullptr, place, view); error != ERROR_SUCCESS)
      return error;
    if (!view.Exists() && !place.IsRoot()) return ERROR_KEY_DELETED;
    const WideString folded = FoldCase(name != nullptr ? WideView(name) : WideView());
    for (const RegistryKey* found : view.keys) {
      if (found == nullptr) continue;
      const auto value = found->values.find(folded);
      if (value != found->values.end()) return CopyData(value->second, type, data, size);
    }
    return ERROR_FILE_NOT_FOUND;
  });
}

STDAPI_(LONG) RegDeleteValueW(HKEY key, LPCWSTR name) {
  return Guard([&]() -> DWORD {
    return ChangeKey(key, [&](RegistryKey& changed) -> DWORD {
      const WideString folded = FoldCase(name != nullptr ? WideView(name) : WideView());
      return changed.values.erase(folded) != 0 ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    });
  });
}

STDAPI_(LONG) RegDeleteKeyW(HKEY key, LPCWSTR subKey) {
  return Guard([&]() -> DWORD {
    return subKey != nullptr ? DeleteKey(key, subKey, false) : ERROR_INVALID_PARAMETER;
  });
}

STDAPI_(LONG) RegDeleteTreeW(HKEY key, LPCWSTR subKey) {
  return Guard([&]() -> DWORD {
    if (subKey != nullptr && *subKey != 0) return DeleteKey(key, subKey, true);
    return ChangeKey(key, [](RegistryKey& changed) -> DWORD {
      changed.keys.clear();
      changed.values.clear();
      return ERROR_SUCCESS;
    });
  });
}

STDAPI_(LONG)
RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, DWORD* nameLength, DWORD* reserved, LPWSTR,
              DWORD*, FILETIME* lastWrite) {
  return Guard([&]() -> DWORD {
    if (reserved != nullptr) return ERROR_INVALID_PARAMETER;
    HKEY__ place{};
    View view;
    if (const DWORD error = LoadView(key, nullptr, place, view); error != ERROR_SUCCESS)
      return error;
    const auto keysOf = [](const RegistryKey* k) { return k != nullptr ? &k->keys : nullptr; };
    const auto* entry = EntryOfUnion(keysOf(view.keys[0]), keysOf(view.keys[1]), index);
    if (entry == nullptr) return ERROR_NO_MORE_ITEMS;
    // The files keep no times.
    if (lastWrite != nullptr) *lastWrite = FILETIME{};
    return CopyName((*entry)->name, name, nameLength);
  });
}

STDAPI_(LONG)
RegEnumValueW(HKEY key, DWORD index, LPWSTR name, DWORD* nameLength, DWORD* reserved, DWORD* type,
              BYTE* data, DWORD* size) {
  return Guard([&]() -> DWORD {
    if (reserved != nullptr) return ERROR_INVALID_PARAMETER;
    HKEY__ place{};
    View view;
    if (const DWORD error = LoadView(key, nullptr, place, view); error != ERROR_SUCCESS)
      return error;
    const auto valuesOf = [](const RegistryKey* k) { return k != nullptr ? &k->values : nullptr; };
    const auto* value = EntryOfUnion(valuesOf(view.keys[0]), valuesOf(view.keys[1]), index);
    if (value == nullptr) return ERROR_NO_MORE_ITEMS;
    if (const DWORD error = CopyName(value->name, name, nameLength); error != ERROR_SUCCESS) {
      return error;
    }
    return CopyData(*value, type, data, size);
  });
}
