#include "platform/atl/registrar.h"

#include <new>

#include "platform/registry.h"
#include "platform/resources.h"

namespace {

using velandoc::KeyRule;
using velandoc::ScriptData;
using velandoc::ScriptKey;
using velandoc::ScriptRoot;
using velandoc::WideString;
using velandoc::WideView;

LONG Error(DWORD error) { return static_cast<LONG>(error); }

velandoc::Registry& System() { return velandoc::CurrentPort<velandoc::Registry>(); }

HKEY RootKey(ScriptRoot root) {
  switch (root) {
    case ScriptRoot::CurrentUser:
      return HKEY_CURRENT_USER;
    case ScriptRoot::LocalMachine:
      return HKEY_LOCAL_MACHINE;
    default:
      return HKEY_CLASSES_ROOT;
  }
}

/// Owns an open key.
class Key {
 public:
  Key() = default;
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    if (m_key != nullptr) System().RegCloseKey(m_key);
  }

  LONG Create(HKEY parent, const WideString& name) {
    return System().RegCreateKeyExW(parent, name.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                    KEY_READ | KEY_WRITE, nullptr, &m_key, nullptr);
  }
  LONG Open(HKEY parent, const WideString& name) {
    return System().RegOpenKeyExW(parent, name.c_str(), 0, KEY_READ | KEY_WRITE, &m_key);
  }
  HKEY Get() const { return m_key; }

 private:
  HKEY m_key = nullptr;
};

LONG DeleteTree(HKEY parent, const WideString& name) {
  const LONG error = System().RegDeleteTreeW(parent, name.c_str());
  return error == Error(ERROR_FILE_NOT_FOUND) ? Error(ERROR_SUCCESS) : error;
}

LONG SetValue(HKEY key, LPCWSTR name, const ScriptData& data) {
  if (data.isNumber) {
    return System().RegSetValueExW(key, name, 0, REG_DWORD,
                                   reinterpret_cast<const BYTE*>(&data.number), sizeof(DWORD));
  }
  const std::size_t size = (data.text.size() + 1) * sizeof(OLECHAR);
  return System().RegSetValueExW(key, name, 0, REG_SZ,
                                 reinterpret_cast<const BYTE*>(data.text.c_str()),
                                 static_cast<DWORD>(size));
}

LONG RegisterKey(HKEY parent, const ScriptKey& script) {
  if (script.rule == KeyRule::Delete) return DeleteTree(parent, script.name);
  if (script.rule == KeyRule::ForceRemove) {
    if (const LONG error = DeleteTree(parent, script.name)) return error;
  }
  Key key;
  if (const LONG error = key.Create(parent, script.name)) return error;
  if (script.defaultValue) {
    if (const LONG error = SetValue(key.Get(), nullptr, *script.defaultValue)) return error;
  }
  for (const velandoc::ScriptValue& value : script.values) {
    if (const LONG error = SetValue(key.Get(), value.name.c_str(), value.data)) return error;
  }
  for (const ScriptKey& child : script.keys) {
    if (const LONG error = RegisterKey(key.Get(), child)) return error;
  }
  return Error(ERROR_SUCCESS);
}

LONG UnregisterKey(HKEY parent, const ScriptKey& script);

/// Takes back what the script made inside its key: named values and subkeys.
LONG UnregisterContents(HKEY parent, const ScriptKey& script) {
  Key key;
  if (const LONG error = key.Open(parent, script.name)) return error;
  for (const velandoc::ScriptValue& value : script.values) {
    const LONG error = System().RegDeleteValueW(key.Get(), value.name.c_str());
    if (error != Error(ERROR_SUCCESS) && error != Error(ERROR_FILE_NOT_FOUND)) return error;
  }
  for (const ScriptKey& child : script.keys) {
    if (const LONG error = UnregisterKey(key.Get(), child)) return error;
  }
  return Error(ERROR_SUCCESS);
}

LONG HasSubKeys(HKEY parent, const WideString& name, bool& hasSubKeys) {
  Key key;
  if (const LONG error = key.Open(parent, name)) return error;
  OLECHAR child[velandoc::kMaxKeyName + 1];
  DWORD length = velandoc::kMaxKeyName + 1;
  const LONG error =
      System().RegEnumKeyExW(key.Get(), 0, child, &length, nullptr, nullptr, nullptr, nullptr);
  hasSubKeys = error != Error(ERROR_NO_MORE_ITEMS);
  return hasSubKeys ? error : Error(ERROR_SUCCESS);
}

LONG UnregisterKey(HKEY parent, const ScriptKey& script) {
  if (script.rule == KeyRule::Delete) return Error(ERROR_SUCCESS);
  if (script.rule == KeyRule::ForceRemove) return DeleteTree(parent, script.name);
  const LONG error = UnregisterContents(parent, script);
  if (error == Error(ERROR_FILE_NOT_FOUND)) return Error(ERROR_SUCCESS);
  if (error != Error(ERROR_SUCCESS) || script.rule == KeyRule::NoRemove) return error;
  // Subkeys that are left are somebody else's, and keep the key: per-user scripts go through plain
  // "Software" and "Classes" keys, which nobody may clear.
  bool hasSubKeys = false;
  if (const LONG failed = HasSubKeys(parent, script.name, hasSubKeys)) return failed;
  return hasSubKeys ? Error(ERROR_SUCCESS) : System().RegDeleteKeyW(parent, script.name.c_str());
}

WideString ToLower(WideView text) {
  WideString lower(text);
  for (OLECHAR& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<OLECHAR>(c - 'A' + 'a');
  }
  return lower;
}

}  // namespace

HRESULT CRegObject::AddReplacement(LPCOLESTR key, LPCOLESTR item) try {
  if (key == nullptr || item == nullptr) return E_INVALIDARG;
  m_replacements.emplace(ToLower(key), item);
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CRegObject::Apply(WideView script, bool doRegister) try {
  const WideString rooted = m_perUser ? velandoc::ScriptForUser(script) : WideString(script);
  const std::optional<WideString> text =
      velandoc::ReplaceInScript(rooted, [this](WideView name) -> std::optional<WideString> {
        const auto found = m_replacements.find(ToLower(name));
        if (found == m_replacements.end()) return std::nullopt;
        return found->second;
      });
  if (!text) return DISP_E_EXCEPTION;
  const auto trees = velandoc::ParseRegistryScript(*text);
  if (!trees) return DISP_E_EXCEPTION;
  for (const velandoc::ScriptTree& tree : *trees) {
    for (const ScriptKey& key : tree.keys) {
      const HKEY root = RootKey(tree.root);
      const LONG error = doRegister ? RegisterKey(root, key) : UnregisterKey(root, key);
      if (error != Error(ERROR_SUCCESS)) return HRESULT_FROM_WIN32(static_cast<DWORD>(error));
    }
  }
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CRegObject::ApplyResource(WORD id, bool doRegister) try {
  const std::optional<std::string_view> bytes =
      velandoc::FindModuleResource(OLESTR("REGISTRY"), id);
  if (!bytes) return HRESULT_FROM_WIN32(ERROR_RESOURCE_TYPE_NOT_FOUND);
  WideString script;
  script.reserve(bytes->size());
  for (const char c : *bytes) {
    if (static_cast<unsigned char>(c) > 0x7F) return DISP_E_EXCEPTION;
    script += static_cast<OLECHAR>(c);
  }
  return Apply(script, doRegister);
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

WideString AtlEscapeQuotes(WideView text) {
  WideString escaped;
  for (const OLECHAR c : text) {
    escaped += c;
    if (c == '\'') escaped += c;
  }
  return escaped;
}
