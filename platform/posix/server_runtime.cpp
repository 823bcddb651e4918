// The ServerRuntime port on Linux: no apartments, so no proxies; type libraries are registered by
// their keys, which are those that OLE Automation writes.
#include "platform/server_runtime.h"

#include <array>
#include <new>
#include <vector>

#include "platform/owners.h"
#include "platform/posix/com/registry_file.h"
#include "platform/registry_key.h"

namespace velandoc {
namespace {

constexpr HRESULT kRegistryAccess = MakeResult(0x8002801C);  // TYPE_E_REGISTRYACCESS

// Marshalling by type library, OLE Automation's own.
constexpr WideView kAutomationMarshaller = u"{00020424-0000-0000-C000-000000000046}";

/// The locale is kept and has no effect.
thread_local LCID t_locale = LOCALE_USER_DEFAULT;

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
  OpenKey key;
  if (const LONG error = key.Create(root, value.key)) return error;
  return key.SetText(value.name.c_str(), value.data);
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

HRESULT Unregister(HKEY root, const WideString& prefix, const TypeLibrary& library) try {
  const Names names = NamesOf(library);
  if (OpenKey version; version.Open(root, prefix + names.version) != 0) return kRegistryAccess;
  for (const TypeLibraryInterface& declared : library.interfaces) {
    if (DeleteKeyTree(root, prefix + u"Interface\\" + GuidText(*declared.id)) != 0) {
      return kRegistryAccess;
    }
  }
  // Other versions of the library keep its key.
  const bool deleted = DeleteKeyTree(root, prefix + names.version) == 0 &&
                       DeleteKeyWithoutSubKeys(root, prefix + names.library) == 0;
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

  HANDLE LockRegistration(bool forUser) override {
    const DWORD error = BeginHiveChanges(forUser ? Hive::kUser : Hive::kMachine);
    return error == ERROR_SUCCESS ? this : nullptr;
  }
  HRESULT UnlockRegistration(HANDLE lock) override {
    return lock != nullptr ? HRESULT_FROM_WIN32(EndHiveChanges()) : S_OK;
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
