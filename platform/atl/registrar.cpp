#include "platform/atl/registrar.h"

#include <algorithm>
#include <new>

#include "platform/ascii_case.h"
#include "platform/registry_key.h"
#include "platform/resources.h"

namespace {

using velandoc::DeleteKeyTree;
using velandoc::DeleteKeyWithoutSubKeys;
using velandoc::KeyRule;
using velandoc::OpenKey;
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

LONG SetValue(const OpenKey& key, LPCWSTR name, const ScriptData& data) {
  if (!data.isNumber) return key.SetText(name, data.text);
  return System().RegSetValueExW(key.Get(), name, 0, REG_DWORD,
                                 reinterpret_cast<const BYTE*>(&data.number), sizeof(DWORD));
}

LONG RegisterKey(HKEY parent, const ScriptKey& script) {
  if (script.rule == KeyRule::Delete) return DeleteKeyTree(parent, script.name);
  if (script.rule == KeyRule::ForceRemove) {
    if (const LONG error = DeleteKeyTree(parent, script.name)) return error;
  }
  OpenKey key;
  if (const LONG error = key.Create(parent, script.name)) return error;
  if (script.defaultValue) {
    if (const LONG error = SetValue(key, nullptr, *script.defaultValue)) return error;
  }
  for (const velandoc::ScriptValue& value : script.values) {
    if (const LONG error = SetValue(key, value.name.c_str(), value.data)) return error;
  }
  for (const ScriptKey& child : script.keys) {
    if (const LONG error = RegisterKey(key.Get(), child)) return error;
  }
  return Error(ERROR_SUCCESS);
}

LONG UnregisterKey(HKEY parent, const ScriptKey& script);

/// Takes back what the script made inside its key: named values and subkeys.
LONG UnregisterContents(HKEY parent, const ScriptKey& script) {
  OpenKey key;
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

LONG UnregisterKey(HKEY parent, const ScriptKey& script) {
  if (script.rule == KeyRule::Delete) return Error(ERROR_SUCCESS);
  if (script.rule == KeyRule::ForceRemove) return DeleteKeyTree(parent, script.name);
  const LONG error = UnregisterContents(parent, script);
  if (error == Error(ERROR_FILE_NOT_FOUND)) return Error(ERROR_SUCCESS);
  if (error != Error(ERROR_SUCCESS) || script.rule == KeyRule::NoRemove) return error;
  // Subkeys that are left are somebody else's, and keep the key: per-user scripts go through plain
  // "Software" and "Classes" keys, which nobody may clear.
  return DeleteKeyWithoutSubKeys(parent, script.name);
}

WideString ToLower(WideView text) {
  WideString lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), velandoc::ToAsciiLower);
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
