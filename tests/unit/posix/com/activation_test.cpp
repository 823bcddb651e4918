// Class objects and the names of classes; the thread's error object.
#include "platform/posix/com/activation.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <thread>

#include "platform/owners.h"
#include "platform/posix/com/registry.h"
#include "resources/prog_ids.h"
#include "tests/support/registry_scope.h"
#include "tests/support/variant_text.h"

namespace velandoc {
namespace {

using testing::DescribeResult;
using testing::DescribeText;
using testing::RegistryScope;

constexpr CLSID kTestClass = {
    0x11223344, 0x5566, 0x7788, {0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF, 0}};

TEST(GuidText, ReadsAndWrites) {
  OLECHAR text[39];
  ASSERT_EQ(StringFromGUID2(kTestClass, text, 39), 39);
  EXPECT_EQ(DescribeText(text), "{11223344-5566-7788-99AA-BBCCDDEEFF00}");
  EXPECT_EQ(StringFromGUID2(kTestClass, text, 38), 0);
  CLSID clsid{};
  EXPECT_EQ(CLSIDFromString(OLESTR("{11223344-5566-7788-99aa-bbccddeeff00}"), &clsid), S_OK);
  EXPECT_EQ(clsid, kTestClass);
  EXPECT_EQ(IIDFromString(nullptr, &clsid), S_OK);
  EXPECT_EQ(clsid, GUID_NULL);
  for (LPCOLESTR broken : {OLESTR(""), OLESTR("{"), OLESTR("{11223344-5566-7788-99AA-BBCCDDEEFF0}"),
                           OLESTR("{11223344-5566-7788-99AA-BBCCDDEEFF00} "),
                           OLESTR("11223344-5566-7788-99AA-BBCCDDEEFF00"),
                           OLESTR("{1122334g-5566-7788-99AA-BBCCDDEEFF00}"),
                           OLESTR("{11223344+5566-7788-99AA-BBCCDDEEFF00}")}) {
    EXPECT_EQ(IIDFromString(broken, &clsid), CO_E_IIDSTRING);
  }
}

class ActivationTest : public ::testing::Test {
 protected:
  static void Write(HKEY root, const WideString& path, const WideString& text) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr),
              0);
    EXPECT_EQ(RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                             static_cast<DWORD>(2 * text.size() + 2)),
              0);
    RegCloseKey(key);
  }

  RegistryScope m_scope;
};

constexpr LPCOLESTR kTestClassText = OLESTR("{11223344-5566-7788-99AA-BBCCDDEEFF00}");

TEST_F(ActivationTest, FindsTheComponentsNamesWithoutRegistration) {
  for (const ComponentProgId& entry : kComponentProgIds) {
    CLSID clsid{};
    EXPECT_EQ(CLSIDFromProgID(entry.progId, &clsid), S_OK);
    EXPECT_EQ(clsid, entry.clsid);
  }
  CLSID clsid = kTestClass;
  EXPECT_EQ(CLSIDFromProgID(OLESTR("velandoc.SERVERCHECK"), &clsid), S_OK);
  EXPECT_EQ(clsid, kServerCheckClass);
  EXPECT_EQ(CLSIDFromProgID(OLESTR("Velandoc.Other"), &clsid), CO_E_CLASSSTRING);
  EXPECT_EQ(clsid, GUID_NULL);
  EXPECT_EQ(CLSIDFromProgID(OLESTR(""), &clsid), CO_E_CLASSSTRING);
  LPOLESTR progId = nullptr;
  ASSERT_EQ(ProgIDFromCLSID(kHdfsClientWinHttpClass, &progId), S_OK);
  EXPECT_EQ(DescribeText(progId), "Velantrica.HdfsWinHttpClient.1");
  CoTaskMemFree(progId);
  EXPECT_EQ(ProgIDFromCLSID(kTestClass, &progId), REGDB_E_CLASSNOTREG);
}

TEST_F(ActivationTest, FollowsCurVerOneStep) {
  Write(HKEY_CLASSES_ROOT, OLESTR("Test.Class.1\\CLSID"), kTestClassText);
  Write(HKEY_CLASSES_ROOT, OLESTR("Test.Class\\CurVer"), OLESTR("Test.Class.1"));
  Write(HKEY_CLASSES_ROOT, OLESTR("Test.Far\\CurVer"), OLESTR("Test.Class"));
  CLSID clsid{};
  EXPECT_EQ(CLSIDFromProgID(OLESTR("Test.Class.1"), &clsid), S_OK);
  EXPECT_EQ(CLSIDFromProgID(OLESTR("Test.Class"), &clsid), S_OK);
  EXPECT_EQ(clsid, kTestClass);
  EXPECT_EQ(CLSIDFromString(OLESTR("test.class"), &clsid), S_OK) << "a name serves as well";
  EXPECT_EQ(CLSIDFromProgID(OLESTR("Test.Far"), &clsid), CO_E_CLASSSTRING);
  Write(HKEY_CLASSES_ROOT, OLESTR("Test.Bad\\CLSID"), OLESTR("no identifier"));
  EXPECT_EQ(CLSIDFromProgID(OLESTR("Test.Bad"), &clsid), CO_E_CLASSSTRING);
}

TEST_F(ActivationTest, TheRegistryComesBeforeTheComponentsOwnNames) {
  Write(HKEY_CURRENT_USER, OLESTR("Software\\Classes\\Velandoc.ServerCheck\\CLSID"),
        kTestClassText);
  CLSID clsid{};
  EXPECT_EQ(CLSIDFromProgID(OLESTR("Velandoc.ServerCheck"), &clsid), S_OK);
  EXPECT_EQ(clsid, kTestClass);
}

TEST_F(ActivationTest, TellsWhyAClassIsNotServed) {
  ComPtr<IUnknown> object;
  const auto create = [&object](REFCLSID clsid) {
    return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                            object.ReceiveVoid());
  };
  EXPECT_EQ(create(kTestClass), REGDB_E_CLASSNOTREG);
  const WideString server =
      WideString(OLESTR("CLSID\\")) + kTestClassText + OLESTR("\\InprocServer32");
  Write(HKEY_CLASSES_ROOT, server, OLESTR("/no/such/library.so"));
  EXPECT_EQ(create(kTestClass), CO_E_DLLNOTFOUND);
  Write(HKEY_CLASSES_ROOT, server, OLESTR("libc.so.6"));
  EXPECT_EQ(create(kTestClass), CO_E_ERRORINDLL) << "a library that serves no classes";
  CoFreeUnusedLibraries();
  std::ofstream(m_scope.Folder() / "user.reg") << "broken";
  EXPECT_EQ(create(kTestClass), REGDB_E_READREGDB);
  EXPECT_FALSE(object);
}

/// A class object that makes nothing and counts its references.
class TestFactory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    *object = nullptr;
    if (riid != IID_IUnknown && riid != IID_IClassFactory) return E_NOINTERFACE;
    *object = this;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return QueryInterface(riid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  ULONG references = 0;
};

TEST_F(ActivationTest, ServesClassesThatTheProcessRegistered) {
  TestFactory factory;
  DWORD cookie = 0;
  ASSERT_EQ(CoRegisterClassObject(kTestClass, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                  &cookie),
            S_OK);
  EXPECT_EQ(factory.references, 1U);
  ComPtr<IUnknown> object;
  EXPECT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_ALL, IID_IUnknown, object.ReceiveVoid()),
            S_OK);
  EXPECT_EQ(object.Get(), &factory);
  object.Reset();
  EXPECT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_LOCAL_SERVER, IID_IUnknown,
                             object.ReceiveVoid()),
            REGDB_E_CLASSNOTREG);
  EXPECT_EQ(CoCreateInstance(kTestClass, &factory, CLSCTX_ALL, IID_IDispatch, object.ReceiveVoid()),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
  EXPECT_EQ(CoRevokeClassObject(cookie), E_INVALIDARG);
  EXPECT_EQ(factory.references, 0U);
}

TEST(CoInitialize, IsCountedPerThread) {
  EXPECT_EQ(CoInitialize(nullptr), S_OK);
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
  std::thread([] {
    EXPECT_EQ(CoInitialize(nullptr), S_OK);
    CoUninitialize();
  }).join();
  CoUninitialize();
  CoUninitialize();
  CoUninitialize();  // one too many does no harm
}

ComPtr<IErrorInfo> MakeError(LPCOLESTR description) {
  ComPtr<ICreateErrorInfo> create;
  EXPECT_EQ(CreateErrorInfo(create.Receive()), S_OK);
  EXPECT_EQ(create->SetDescription(const_cast<LPOLESTR>(description)), S_OK);
  EXPECT_EQ(create->SetSource(const_cast<LPOLESTR>(OLESTR("Velandoc.ServerCheck"))), S_OK);
  ComPtr<IErrorInfo> info;
  EXPECT_EQ(create->QueryInterface(IID_IErrorInfo, info.ReceiveVoid()), S_OK);
  return info;
}

TEST(ErrorInfo, IsHandedOverOnceAndKeptPerThread) {
  const ComPtr<IErrorInfo> info = MakeError(OLESTR("what went wrong"));
  ASSERT_EQ(SetErrorInfo(0, info.Get()), S_OK);
  std::thread([] {
    ComPtr<IErrorInfo> other;
    EXPECT_EQ(GetErrorInfo(0, other.Receive()), S_FALSE);
    EXPECT_FALSE(other);
  }).join();
  ComPtr<IErrorInfo> got;
  EXPECT_EQ(GetErrorInfo(0, got.Receive()), S_OK);
  EXPECT_EQ(got.Get(), info.Get());
  EXPECT_EQ(GetErrorInfo(0, got.Receive()), S_FALSE);
  Bstr helpFile;
  EXPECT_EQ(info->GetHelpFile(helpFile.Receive()), S_OK);
  EXPECT_EQ(helpFile.Get(), nullptr);
}

TEST(ComError, SpeaksInTheErrorObjectsWords) {
  const _com_error error(E_FAIL, MakeError(OLESTR("what went wrong")).Get(), true);
  _com_error copy(E_POINTER);
  EXPECT_EQ(DescribeText(copy.ErrorMessage()), "Invalid pointer");
  copy = error;
  EXPECT_EQ(DescribeText(static_cast<const OLECHAR*>(copy.Description())), "what went wrong");
  EXPECT_EQ(DescribeText(static_cast<const OLECHAR*>(copy.Source())), "Velandoc.ServerCheck");
  EXPECT_EQ(DescribeText(copy.ErrorMessage()), "Unspecified error");
  EXPECT_TRUE(!copy.HelpFile());
  EXPECT_EQ(DescribeText(_com_error(E_OUTOFMEMORY).ErrorMessage()), "Not enough memory.");
  EXPECT_EQ(DescribeText(_com_error(MakeResult(0x80040200)).ErrorMessage()),
            "Unknown error 0x80040200");
  EXPECT_EQ(DescribeText(_com_error(MakeResult(0x80040201)).ErrorMessage()), "IDispatch error #1");
  EXPECT_EQ(DescribeText(_com_error(MakeResult(0x8004FFFF)).ErrorMessage()),
            "IDispatch error #65023");
  EXPECT_EQ(DescribeText(_com_error(0x2EFD).ErrorMessage()), "Unknown error 0x2EFD");
}

}  // namespace
}  // namespace velandoc
