// Our registrar against the system's (the Registrar class of atl.dll): the same scripts leave the
// same keys.
#include <gtest/gtest.h>

#include "platform/atl/registrar.h"
#include "platform/owners.h"
#include "platform/resources.h"

namespace velandoc {

/// The system's registrar, which no header here declares. The order of the operations is its
/// virtual table's. Not in the unnamed namespace: a compiler that sees all of that and no class
/// that implements it takes the calls for unreachable.
struct SystemRegistrar : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE AddReplacement(LPCOLESTR key, LPCOLESTR item) = 0;
  virtual HRESULT STDMETHODCALLTYPE ClearReplacements() = 0;
  virtual HRESULT STDMETHODCALLTYPE ResourceRegisterSz(LPCOLESTR, LPCOLESTR, LPCOLESTR) = 0;
  virtual HRESULT STDMETHODCALLTYPE ResourceUnregisterSz(LPCOLESTR, LPCOLESTR, LPCOLESTR) = 0;
  virtual HRESULT STDMETHODCALLTYPE FileRegister(LPCOLESTR) = 0;
  virtual HRESULT STDMETHODCALLTYPE FileUnregister(LPCOLESTR) = 0;
  virtual HRESULT STDMETHODCALLTYPE StringRegister(LPCOLESTR script) = 0;
  virtual HRESULT STDMETHODCALLTYPE StringUnregister(LPCOLESTR script) = 0;
};

namespace {

constexpr CLSID kRegistrarClass = {
    0x44EC053A, 0x400F, 0x11D0, {0x9D, 0xCD, 0x00, 0xA0, 0xC9, 0x03, 0x91, 0xD3}};
constexpr IID kRegistrarInterface = {
    0x44EC053B, 0x400F, 0x11D0, {0x9D, 0xCD, 0x00, 0xA0, 0xC9, 0x03, 0x91, 0xD3}};

/// Every key and value below `key`, as text.
std::wstring Dump(HKEY key, const std::wstring& path) {
  std::wstring text;
  for (DWORD i = 0;; ++i) {
    wchar_t name[256];
    DWORD nameLength = 256;
    BYTE data[1024];
    DWORD size = sizeof(data);
    DWORD type = 0;
    if (RegEnumValueW(key, i, name, &nameLength, nullptr, &type, data, &size) != ERROR_SUCCESS) {
      break;
    }
    text += path + L" [" + name + L"] " + std::to_wstring(type) + L" ";
    for (DWORD at = 0; at < size; ++at) text += std::to_wstring(data[at]) + L",";
    text += L"\n";
  }
  for (DWORD i = 0;; ++i) {
    wchar_t name[256];
    DWORD nameLength = 256;
    if (RegEnumKeyExW(key, i, name, &nameLength, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      break;
    }
    HKEY child = nullptr;
    if (RegOpenKeyExW(key, name, 0, KEY_READ, &child) != ERROR_SUCCESS) continue;
    text += path + L"\\" + name + L"\n" + Dump(child, path + L"\\" + name);
    RegCloseKey(child);
  }
  return text;
}

std::wstring DumpPlace() {
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, L"Software\\VelandocTwin", 0, KEY_READ, &key) !=
      ERROR_SUCCESS) {
    return L"no key";
  }
  const std::wstring text = Dump(key, L"");
  RegCloseKey(key);
  return text;
}

/// The script of resource `id`, moved from HKCR to a place of the test's own.
std::wstring MovedScript(WORD id) {
  const std::optional<std::string_view> bytes = FindModuleResource(L"REGISTRY", id);
  std::wstring script(bytes->begin(), bytes->end());
  return L"HKCU\r\n{\r\nNoRemove Software\r\n{\r\nNoRemove VelandocTwin" +
         script.substr(script.find(L"HKCR") + 4) + L"\r\n}\r\n}";
}

TEST(RegistrarTwinTest, OurScriptsLeaveTheSameKeys) {
  ASSERT_EQ(CoInitialize(nullptr), S_OK);
  {
    ComPtr<SystemRegistrar> twin;
    const HRESULT created = CoCreateInstance(kRegistrarClass, nullptr, CLSCTX_INPROC_SERVER,
                                             kRegistrarInterface, twin.ReceiveVoid());
    ASSERT_EQ(created, S_OK) << "the system has no registrar";
    CRegObject ours;
    for (const auto& [key, item] :
         {std::pair(L"MODULE", L"C:\\a b\\v.dll"),
          std::pair(L"APPID", L"{91509BD2-09D1-4F79-B147-D5EF6C90DB1C}")}) {
      ASSERT_EQ(twin->AddReplacement(key, item), S_OK);
      ASSERT_EQ(ours.AddReplacement(key, item), S_OK);
    }
    for (const WORD id : {WORD{101}, WORD{103}, WORD{108}, WORD{109}, WORD{110}}) {
      SCOPED_TRACE(id);
      const std::wstring script = MovedScript(id);
      RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\VelandocTwin");
      ASSERT_EQ(twin->StringRegister(script.c_str()), S_OK);
      const std::wstring theirs = DumpPlace();
      EXPECT_NE(theirs, L"no key");
      RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\VelandocTwin");
      ASSERT_EQ(ours.StringRegister(script.c_str()), S_OK);
      EXPECT_EQ(DumpPlace(), theirs);

      ASSERT_EQ(twin->StringUnregister(script.c_str()), S_OK);
      const std::wstring theirRest = DumpPlace();
      ASSERT_EQ(ours.StringRegister(script.c_str()), S_OK);
      ASSERT_EQ(ours.StringUnregister(script.c_str()), S_OK);
      EXPECT_EQ(DumpPlace(), theirRest);
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\VelandocTwin");
  }
  CoUninitialize();
}

}  // namespace
}  // namespace velandoc
