// The ServerRuntime port on Linux: no apartments, so no proxies; type libraries are registered by
// their keys, which are those that OLE Automation writes.
#include "platform/server_runtime.h"

#include <array>
#include <new>
#include <vector>

#include "platform/owners.h"
#include "platform/registry.h"

namespace velandoc {
namespace {

constexpr HRESULT kRegistryAccess = MakeResult(0x8002801C);  // TYPE_E_REGISTRYACCESS

// Marshalling by type library, OLE Automation's own.
constexpr WideView kAutomationMarshaller = u"{00020424-0000-0000-C000-000000000046}";

/// The locale is kept and has no effect.
thread_local LCID t_locale = LOCALE_USER_DEFAULT;

Registry& System() { return CurrentPort<Registry>(); }

WideString GuidText(REFGUID guid) {
  std::array<OLECHAR, 39> text{};
  StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
  return text.data();
}

/// Numbers of a version in the keys are hexadecimal, without leading zeros.
WideString HexText(DWORD number) {
  WideString text;
  do {
    text.insert(text.begin(), u"0123456789abcdef"[number % 16]);
    number /= 16;
  } while (number != 0);
  return text;
}

struct Value {
  WideString key;
  WideString name;  // empty for the default value
  WideString data;
};

struct Names {
  WideString library;      // TypeLib\{id}
  WideString version;      // TypeLib\{id}\1.0
  WideString versionText;  // 1.0
};

Names NamesOf(const TypeLibrary& library) {
  Names names;
  names.library = u"TypeLib\\" + GuidText(*library.id);
  names.versionText = HexText(library.major) + u"." + HexText(library.minor);
  names.version = names.library + u"\\" + names.versionText;
  return names;
}

LONG Set(HKEY root, const Value& value) {
  HKEY key = nullptr;
  if (const LONG error =
          System().RegCreateKeyExW(root, value.key.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                   KEY_WRITE, nullptr, &key, nullptr)) {
    return error;
  }
  const LONG error = System().RegSetValueExW(
      key, value.name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.data.c_str()),
      static_cast<DWORD>((value.data.size() + 1) * sizeof(OLECHAR)));
  System().RegCloseKey(key);
  return error;
}

HRESULT Register(HKEY root, const WideString& prefix, const TypeLibrary& library) try {
  const Names names = NamesOf(library);
  const WideString locale = names.version + u"\\" + HexText(library.lcid);
  const WideString folder = library.path.substr(0, library.path.find_last_of(u'/') + 1);
  std::vector<Value> values = {
      {names.version, u"", library.helpString},
      // "win64" is what tells readers of these keys that the library is for 64-bit programs.
      {locale + u"\\win64", u"", library.path},
      {names.version + u"\\FLAGS", u"", u"0"},
      {names.version + u"\\HELPDIR", u"", folder},
  };
  for (const TypeLibraryInterface& declared : library.interfaces) {
    const WideString key = u"Interface\\" + GuidText(*declared.id);
    values.push_back({key, u"", declared.name});
    values.push_back({key + u"\\ProxyStubClsid", u"", WideString(kAutomationMarshaller)});
    values.push_back({key + u"\\ProxyStubClsid32", u"", WideString(kAutomationMarshaller)});
    values.push_back({key + u"\\TypeLib", u"", GuidText(*library.id)});
    values.push_back({key + u"\\TypeLib", u"Version", names.versionText});
  }
  for (Value& value : values) {
    value.key = prefix + value.key;
    if (Set(root, value) != 0) return kRegistryAccess;
  }
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

bool Delete(HKEY root, const WideString& key) {
  const LONG error = System().RegDeleteTreeW(root, key.c_str());
  return error == 0 || error == static_cast<LONG>(ERROR_FILE_NOT_FOUND);
}

/// Deletes the key if it is there and empty.
bool DeleteEmpty(HKEY root, const WideString& key) {
  HKEY opened = nullptr;
  const LONG missing = System().RegOpenKeyExW(root, key.c_str(), 0, KEY_READ, &opened);
  if (missing != 0) return missing == static_cast<LONG>(ERROR_FILE_NOT_FOUND);
  std::array<OLECHAR, 256> child;
  DWORD length = static_cast<DWORD>(child.size());
  const LONG last =
      System().RegEnumKeyExW(opened, 0, child.data(), &length, nullptr, nullptr, nullptr, nullptr);
  System().RegCloseKey(opened);
  if (last != static_cast<LONG>(ERROR_NO_MORE_ITEMS)) return last == 0;
  return System().RegDeleteKeyW(root, key.c_str()) == 0;
}

HRESULT Unregister(HKEY root, const WideString& prefix, const TypeLibrary& library) try {
  const Names names = NamesOf(library);
  HKEY version = nullptr;
  if (System().RegOpenKeyExW(root, (prefix + names.version).c_str(), 0, KEY_READ, &version) != 0) {
    return kRegistryAccess;
  }
  System().RegCloseKey(version);
  for (const TypeLibraryInterface& declared : library.interfaces) {
    if (!Delete(root, prefix + u"Interface\\" + GuidText(*declared.id))) return kRegistryAccess;
  }
  // Other versions of the library keep its key.
  const bool deleted =
      Delete(root, prefix + names.version) && DeleteEmpty(root, prefix + names.library);
  return deleted ? S_OK : kRegistryAccess;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

constexpr const OLECHAR* kUserClasses = u"Software\\Classes\\";

class PosixServerRuntime final : public ServerRuntime {
 public:
  LCID GetThreadLocale() override { return t_locale; }
  BOOL SetThreadLocale(LCID lcid) override {
    t_locale = lcid;
    return TRUE;
  }

  HRESULT RegisterTypeLib(const TypeLibrary& library) override {
    return Register(HKEY_CLASSES_ROOT, u"", library);
  }
  HRESULT UnRegisterTypeLib(const TypeLibrary& library) override {
    return Unregister(HKEY_CLASSES_ROOT, u"", library);
  }
  bool OffersTypeLibForUser() override { return true; }
  HRESULT RegisterTypeLibForUser(const TypeLibrary& library) override {
    return Register(HKEY_CURRENT_USER, kUserClasses, library);
  }
  HRESULT UnRegisterTypeLibForUser(const TypeLibrary& library) override {
    return Unregister(HKEY_CURRENT_USER, kUserClasses, library);
  }

  // Objects are called on the thread that made them: nothing is ever marshalled.
  void SetProxyModule(HINSTANCE) override {}
  HRESULT NdrDllCanUnloadNow() override { return S_OK; }
  HRESULT NdrDllGetClassObject(REFCLSID, REFIID, void** object) override {
    if (object == nullptr) return E_INVALIDARG;
    *object = nullptr;
    return CLASS_E_CLASSNOTAVAILABLE;
  }
  HRESULT NdrDllRegisterProxy() override { return S_OK; }
  HRESULT NdrDllUnregisterProxy() override { return S_OK; }
};

}  // namespace

template <>
ServerRuntime& SystemPort<ServerRuntime>() {
  static PosixServerRuntime port;
  return port;
}

}  // namespace velandoc
