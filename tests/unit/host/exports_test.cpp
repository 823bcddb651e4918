// The five exports: their steps, their order, what each failure leaves.
#include "host/exports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "host/velandoc_module.h"
#include "platform/mfc/module_state.h"
#include "platform/module_path.h"
#include "platform/owners.h"
#include "tests/support/memory_registry.h"
#include "tests/support/recording_runtime.h"
#include "velandoc_idl.h"

namespace velandoc {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Not;

using Lines = std::vector<std::string>;

std::string ModulePath() {
  std::string narrow;
  for (const OLECHAR c : GetModulePath()) narrow += static_cast<char>(c);
  return narrow;
}

/// What the scripts of a whole registration leave below `root`, in the order of the names.
Lines Registered(const std::string& root) {
  struct {
    std::string name;
    std::string clsid;
    std::string prefix;
  } const classes[] = {{"ServerCheck", "{1D477FCE-048A-4657-BFDF-6DD165043E36}", "Velandoc."},
                       {"HdfsClient", "{5EBD1685-DEAC-437B-A090-846F578C2F99}", "Velantrica."},
                       {"Client", "{6884BC45-2A7D-4747-AF48-A5EECC5BF9A9}", "Velandoc."}};
  const std::string appId = "{91509BD2-09D1-4F79-B147-D5EF6C90DB1C}";
  Lines lines = {root + "\\AppID",
                 root + "\\AppID\\Velandoc.DLL",
                 root + "\\AppID\\Velandoc.DLL\\[AppID]=" + appId,
                 root + "\\AppID\\" + appId,
                 root + "\\AppID\\" + appId + "\\[]=Velandoc",
                 root + "\\CLSID"};
  const auto add = [&lines](const std::string& key, const Lines& below) {
    lines.push_back(key);
    for (const std::string& line : below) lines.push_back(key + "\\" + line);
  };
  for (const auto& [name, clsid, prefix] : classes) {
    if (name == "HdfsClient") {
      // The class between these two, with its script's differences.
      add(root + "\\CLSID\\{4A45908C-EF4C-4D12-951B-9595D9CC208B}",
          {"[]=HdfsWinHttpClient class", "InprocServer32", "InprocServer32\\[]=" + ModulePath(),
           "InprocServer32\\[ThreadingModel]=Apartment", "ProgID",
           "ProgID\\[]=Velantrica.HdfsWinHttpClient.1", "Programmable", "TypeLib",
           "TypeLib\\[]={779c54aa-fcc0-42ad-84d1-708bb472ea26}", "Version", "Version\\[]=1.0",
           "VersionIndependentProgID",
           "VersionIndependentProgID\\[]=Velantrica.HdfsWinHttpClient"});
    }
    add(root + "\\CLSID\\" + clsid,
        {"[]=" + name + " Class", "InprocServer32", "InprocServer32\\[]=" + ModulePath(),
         "InprocServer32\\[ThreadingModel]=Apartment", "ProgID",
         "ProgID\\[]=" + prefix + name + ".1", "Programmable", "TypeLib",
         "TypeLib\\[]={6EF447E8-DEC4-47C3-B65D-7B776C644F1D}", "VersionIndependentProgID",
         "VersionIndependentProgID\\[]=" + prefix + name});
  }
  // By name "Client" is before "ServerCheck", whose class id is before the other's.
  for (const auto* entry : {&classes[2], &classes[0], &classes[1]}) {
    const std::string progId = entry->prefix + entry->name;
    const std::string name = root + "\\" + progId;
    add(name, {"[]=" + entry->name + " Class", "CLSID", "CLSID\\[]=" + entry->clsid, "CurVer",
               "CurVer\\[]=" + progId + ".1"});
    add(name + ".1", {"[]=" + entry->name + " Class", "CLSID", "CLSID\\[]=" + entry->clsid});
  }
  const std::string winHttp = root + "\\Velantrica.HdfsWinHttpClient";
  add(winHttp,
      {"[]=HdfsWinHttpClient class", "CurVer", "CurVer\\[]=Velantrica.HdfsWinHttpClient.1"});
  add(winHttp + ".1",
      {"[]=HdfsWinHttpClient class", "CLSID", "CLSID\\[]={4a45908c-ef4c-4d12-951b-9595d9cc208b}"});
  return lines;
}

class ExportsTest : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(registry.OpenKeys(), 0);
    EXPECT_EQ(runtime.locale, 0x407U) << "the thread's locale was not put back";
    EXPECT_EQ(Module().GetLockCount(), 0);
    AtlSetPerUserRegistration(false);
  }

  MemoryRegistry registry;
  RecordingRuntime runtime;
  PortScope<Registry> registryScope{registry};
  PortScope<ServerRuntime> runtimeScope{runtime};
};

TEST_F(ExportsTest, RegisteringWritesTheKeys) {
  EXPECT_EQ(DllRegisterServer(), S_OK);
  EXPECT_THAT(registry.Dump(), ElementsAreArray(Registered("HKCR")));
  EXPECT_THAT(runtime.calls,
              ElementsAre("GetThreadLocale", "SetThreadLocale 2048", "RegisterTypeLib",
                          "SetThreadLocale 1031", "NdrDllRegisterProxy"));
  EXPECT_EQ(runtime.library.path, GetModulePath());
  EXPECT_EQ(*runtime.library.id, LIBID_VelandocLib);
  EXPECT_EQ(runtime.library.lcid, 0x409U);
}

TEST_F(ExportsTest, TheAppIdIsRegisteredBeforeTheClassesInTheirOrder) {
  ASSERT_EQ(DllRegisterServer(), S_OK);
  ASSERT_GT(registry.changes.size(), 6U);
  EXPECT_EQ(registry.changes[0], "create HKCR\\AppID");
  EXPECT_EQ(registry.changes[5], "create HKCR\\Velandoc.Client.1");
  const auto made = [&](const std::string& key) {
    return std::find(registry.changes.begin(), registry.changes.end(), "create HKCR\\" + key);
  };
  EXPECT_LT(made("Velandoc.Client"), made("Velantrica.HdfsClient.1"));
  EXPECT_LT(made("Velantrica.HdfsClient"), made("Velantrica.HdfsWinHttpClient.1"));
  EXPECT_LT(made("Velantrica.HdfsWinHttpClient"), made("Velandoc.ServerCheck.1"));
  EXPECT_NE(made("Velandoc.ServerCheck.1"), registry.changes.end());
}

TEST_F(ExportsTest, UnregisteringTakesTheKeysOut) {
  ASSERT_EQ(DllRegisterServer(), S_OK);
  runtime.calls.clear();
  registry.changes.clear();
  EXPECT_EQ(DllUnregisterServer(), S_OK);
  EXPECT_THAT(registry.Dump(), ElementsAre("HKCR\\AppID", "HKCR\\CLSID"));
  EXPECT_EQ(registry.changes.front(), "delete HKCR\\Velandoc.Client.1\\CLSID");
  EXPECT_EQ(registry.changes.back(), "delete HKCR\\AppID\\Velandoc.DLL") << "the AppID goes last";
  // The proxies are registered once more before they are removed.
  EXPECT_THAT(runtime.calls,
              ElementsAre("GetThreadLocale", "SetThreadLocale 2048", "UnRegisterTypeLib",
                          "SetThreadLocale 1031", "NdrDllRegisterProxy", "NdrDllUnregisterProxy"));
}

TEST_F(ExportsTest, EachFailingRegistryCallEndsRegistration) {
  for (const bool doRegister : {true, false}) {
    const auto run = doRegister ? &DllRegisterServer : &DllUnregisterServer;
    int failing = 0;
    HRESULT result = E_FAIL;
    while (FAILED(result)) {
      registry.FailCall(0, 0);
      ASSERT_EQ(DllRegisterServer(), S_OK);
      runtime.calls.clear();
      registry.FailCall(++failing, ERROR_DISK_FULL);
      result = run();
      if (SUCCEEDED(result)) break;
      EXPECT_EQ(result, HRESULT_FROM_WIN32(ERROR_DISK_FULL)) << failing;
      EXPECT_EQ(registry.Calls(), failing) << "a step behind the failed one";
      EXPECT_THAT(runtime.calls, Not(Contains("NdrDllRegisterProxy"))) << failing;
      EXPECT_THAT(runtime.calls, Contains("SetThreadLocale 1031")) << failing;
      EXPECT_EQ(registry.OpenKeys(), 0) << failing;
    }
    EXPECT_GT(failing, 10);
  }
}

TEST_F(ExportsTest, AFailedTypeLibraryEndsRegistration) {
  runtime.results["RegisterTypeLib"] = E_ACCESSDENIED;
  EXPECT_EQ(DllRegisterServer(), E_ACCESSDENIED);
  EXPECT_THAT(runtime.calls, Not(Contains("NdrDllRegisterProxy")));
  EXPECT_THAT(registry.Dump(), ElementsAreArray(Registered("HKCR")))
      << "what went before is not undone";
}

TEST_F(ExportsTest, AFailedTypeLibraryKeepsTheAppIdOnUnregistration) {
  ASSERT_EQ(DllRegisterServer(), S_OK);
  runtime.results["UnRegisterTypeLib"] = E_ACCESSDENIED;
  runtime.calls.clear();
  EXPECT_EQ(DllUnregisterServer(), E_ACCESSDENIED);
  EXPECT_THAT(registry.Dump(), Contains("HKCR\\AppID\\Velandoc.DLL"));
  EXPECT_THAT(registry.Dump(), Not(Contains("HKCR\\Velandoc.ServerCheck")));
  EXPECT_THAT(runtime.calls, Not(Contains("NdrDllRegisterProxy")));
}

TEST_F(ExportsTest, TheProxiesResultIsTheResult) {
  runtime.results["NdrDllRegisterProxy"] = E_ABORT;
  EXPECT_EQ(DllRegisterServer(), E_ABORT);
  runtime.calls.clear();
  EXPECT_EQ(DllUnregisterServer(), E_ABORT);
  EXPECT_THAT(runtime.calls, Not(Contains("NdrDllUnregisterProxy")));
  runtime.results["NdrDllRegisterProxy"] = S_OK;
  runtime.results["NdrDllUnregisterProxy"] = E_UNEXPECTED;
  EXPECT_EQ(DllUnregisterServer(), E_UNEXPECTED);
}

struct CommandLineCase {
  LPCWSTR commandLine;
  bool forUser;
};

TEST_F(ExportsTest, DllInstallReadsTheCommandLine) {
  const CommandLineCase cases[] = {
      {nullptr, false},           {OLESTR(""), false},      {OLESTR("user"), true},
      {OLESTR("USER"), true},     {OLESTR("uSeR"), true},   {OLESTR("username"), false},
      {OLESTR("user "), false},   {OLESTR(" user"), false}, {OLESTR("use"), false},
      {OLESTR("machine"), false},
  };
  for (const CommandLineCase& test : cases) {
    AtlSetPerUserRegistration(false);
    MemoryRegistry fresh;
    const PortScope<Registry> scope(fresh);
    runtime.calls.clear();
    EXPECT_EQ(DllInstall(TRUE, test.commandLine), S_OK);
    Lines expected = Registered(test.forUser ? "HKCU\\Software\\Classes" : "HKCR");
    if (test.forUser) {
      expected.insert(expected.begin(), {"HKCU\\Software", "HKCU\\Software\\Classes"});
    }
    EXPECT_THAT(fresh.Dump(), ElementsAreArray(expected));
    EXPECT_THAT(runtime.calls,
                Contains(test.forUser ? "RegisterTypeLibForUser" : "RegisterTypeLib"));
    EXPECT_EQ(AtlGetPerUserRegistration(), test.forUser);
  }
}

TEST_F(ExportsTest, PerUserRegistrationIsNeverTurnedOffAgain) {
  ASSERT_EQ(DllInstall(TRUE, OLESTR("user")), S_OK);
  registry.changes.clear();
  EXPECT_EQ(DllInstall(FALSE, nullptr), S_OK);
  EXPECT_THAT(registry.Dump(), Not(Contains("HKCU\\Software\\Classes\\Velandoc.ServerCheck")));
  EXPECT_THAT(runtime.calls, Contains("UnRegisterTypeLibForUser"));
  EXPECT_EQ(DllRegisterServer(), S_OK);
  EXPECT_THAT(registry.Dump(), Contains("HKCU\\Software\\Classes\\Velandoc.ServerCheck"));
  EXPECT_THAT(registry.Dump(), Not(Contains("HKCR\\Velandoc.ServerCheck")));
}

TEST_F(ExportsTest, OthersWaitWhileItRegisters) {
  EXPECT_EQ(DllRegisterServer(), S_OK);
  EXPECT_EQ(runtime.locked,
            "machine: GetThreadLocale, SetThreadLocale 2048, RegisterTypeLib, "
            "SetThreadLocale 1031, NdrDllRegisterProxy, unlocked");
  EXPECT_EQ(DllUnregisterServer(), S_OK);
  EXPECT_EQ(runtime.locked,
            "machine: GetThreadLocale, SetThreadLocale 2048, UnRegisterTypeLib, "
            "SetThreadLocale 1031, NdrDllRegisterProxy, NdrDllUnregisterProxy, unlocked");
  registry.FailCall(1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(DllInstall(FALSE, OLESTR("user")), E_ACCESSDENIED);
  EXPECT_EQ(runtime.locked,
            "user: GetThreadLocale, SetThreadLocale 2048, SetThreadLocale 1031, unlocked");
}

// Else another process's registration could come between a failed one and its taking back, and be
// taken back with it.
TEST_F(ExportsTest, OthersWaitWhileAFailedInstallIsTakenBack) {
  runtime.results["RegisterTypeLib"] = E_ACCESSDENIED;
  EXPECT_EQ(DllInstall(TRUE, nullptr), E_ACCESSDENIED);
  EXPECT_EQ(runtime.locked,
            "machine: GetThreadLocale, SetThreadLocale 2048, RegisterTypeLib, "
            "SetThreadLocale 1031, GetThreadLocale, SetThreadLocale 2048, UnRegisterTypeLib, "
            "SetThreadLocale 1031, NdrDllRegisterProxy, NdrDllUnregisterProxy, unlocked");
}

TEST_F(ExportsTest, WhatCouldNotBeKeptIsAFailureOfItsOwn) {
  runtime.results["UnlockRegistration"] = E_ABORT;
  EXPECT_EQ(DllRegisterServer(), E_ABORT);
  EXPECT_EQ(DllUnregisterServer(), E_ABORT);
  EXPECT_EQ(DllInstall(TRUE, nullptr), E_ABORT);
  runtime.results["RegisterTypeLib"] = E_ACCESSDENIED;
  EXPECT_EQ(DllRegisterServer(), E_ACCESSDENIED) << "the first failure";
}

TEST_F(ExportsTest, WithoutTheForUserFunctionsTheTypeLibraryIsTheMachines) {
  runtime.offersForUser = false;
  EXPECT_EQ(DllInstall(TRUE, OLESTR("user")), S_OK);
  EXPECT_EQ(DllInstall(FALSE, OLESTR("user")), S_OK);
  EXPECT_THAT(runtime.calls, Contains("RegisterTypeLib"));
  EXPECT_THAT(runtime.calls, Contains("UnRegisterTypeLib"));
}

TEST_F(ExportsTest, DllInstallWithoutInstallUnregisters) {
  ASSERT_EQ(DllRegisterServer(), S_OK);
  runtime.calls.clear();
  EXPECT_EQ(DllInstall(FALSE, nullptr), S_OK);
  EXPECT_THAT(registry.Dump(), ElementsAre("HKCR\\AppID", "HKCR\\CLSID"));
  EXPECT_THAT(runtime.calls, Contains("NdrDllUnregisterProxy"));
}

TEST_F(ExportsTest, AFailedInstallIsTakenBackAndItsFailureReturned) {
  runtime.results["RegisterTypeLib"] = E_ACCESSDENIED;
  runtime.results["UnRegisterTypeLib"] = E_ABORT;
  EXPECT_EQ(DllInstall(TRUE, nullptr), E_ACCESSDENIED);
  EXPECT_THAT(runtime.calls, Contains("UnRegisterTypeLib"));
  EXPECT_THAT(registry.Dump(), Not(Contains("HKCR\\Velandoc.ServerCheck")));
}

TEST_F(ExportsTest, ProxiesAreAskedFirst) {
  runtime.results["NdrDllGetClassObject"] = S_OK;
  void* object = this;
  EXPECT_EQ(DllGetClassObject(CLSID_ServerCheck, IID_IClassFactory, &object), S_OK);
  EXPECT_EQ(object, this) << "the module was asked as well";
}

TEST_F(ExportsTest, ClassesAreServedBehindTheProxies) {
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(DllGetClassObject(CLSID_ServerCheck, IID_IClassFactory, factory.ReceiveVoid()), S_OK);
  EXPECT_THAT(runtime.calls, ElementsAre("NdrDllGetClassObject"));
  ComPtr<IServerCheck> check;
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IServerCheck, check.ReceiveVoid()), S_OK);
  ComPtr<IDispatch> dispatch;
  EXPECT_EQ(check->QueryInterface(IID_IDispatch, dispatch.ReceiveVoid()), S_OK);
  ASSERT_EQ(DllGetClassObject(CLSID_Client, IID_IClassFactory, factory.ReceiveVoid()), S_OK);
  ComPtr<IClient> client;
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IClient, client.ReceiveVoid()), S_OK);
  EXPECT_EQ(client->QueryInterface(IID_IDispatch, dispatch.ReceiveVoid()), S_OK);
  ASSERT_EQ(DllGetClassObject(CLSID_HdfsClient, IID_IClassFactory, factory.ReceiveVoid()), S_OK);
  ComPtr<IHdfsClient> hdfs;
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IHdfsClient, hdfs.ReceiveVoid()), S_OK);
  ComPtr<IRawRequest> raw;
  EXPECT_EQ(hdfs->QueryInterface(IID_IRawRequest, raw.ReceiveVoid()), S_OK);
  ASSERT_EQ(DllGetClassObject(CLSID_HdfsClientWinHttp, IID_IClassFactory, factory.ReceiveVoid()),
            S_OK);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IHdfsClient, hdfs.ReceiveVoid()), S_OK);
  EXPECT_EQ(hdfs->QueryInterface(IID_IRawRequest, raw.ReceiveVoid()), E_NOINTERFACE);
}

TEST_F(ExportsTest, UnknownClassesAreNotServed) {
  void* object = this;
  EXPECT_EQ(DllGetClassObject(IID_IServerCheck, IID_IClassFactory, &object),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(DllGetClassObject(CLSID_ServerCheck, IID_IClassFactory, nullptr), E_POINTER);
}

TEST_F(ExportsTest, UnloadingWaitsForProxiesApplicationAndObjects) {
  EXPECT_EQ(DllCanUnloadNow(), S_OK);

  runtime.results["NdrDllCanUnloadNow"] = E_ABORT;
  EXPECT_EQ(DllCanUnloadNow(), E_ABORT) << "the proxies' result, whatever it is";
  runtime.results["NdrDllCanUnloadNow"] = S_FALSE;
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  runtime.results["NdrDllCanUnloadNow"] = S_OK;

  {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    AfxOleLockApp();
  }
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    AfxOleUnlockApp();
  }
  AfxOleLockApp();
  EXPECT_EQ(DllCanUnloadNow(), S_OK) << "the lock is another module's";
  AfxOleUnlockApp();

  ComPtr<IUnknown> factory;
  ASSERT_EQ(DllGetClassObject(CLSID_ServerCheck, IID_IUnknown, factory.ReceiveVoid()), S_OK);
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  factory.Reset();
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

class FullRegistrar final : public IRegistrarBase {
 public:
  HRESULT AddReplacement(LPCOLESTR, LPCOLESTR) override { return E_INVALIDARG; }
};

TEST_F(ExportsTest, AReplacementThatCannotBeAddedIsAMemoryFailure) {
  FullRegistrar full;
  EXPECT_EQ(Module().AddCommonRGSReplacements(&full), E_OUTOFMEMORY);
}

TEST_F(ExportsTest, TheScriptsOfTheHdfsClassesKeepTheirDifferences) {
  CRegObject registrar;
  ASSERT_EQ(registrar.AddReplacement(OLESTR("MODULE"), OLESTR("m")), S_OK);
  for (const WORD script : {WORD{103}, WORD{109}, WORD{110}}) {
    ASSERT_EQ(registrar.ResourceRegister(script), S_OK) << script;
  }
  const Lines lines = registry.Dump();
  const std::string client = "HKCR\\CLSID\\{6884BC45-2A7D-4747-AF48-A5EECC5BF9A9}";
  const std::string hdfs = "HKCR\\CLSID\\{5EBD1685-DEAC-437B-A090-846F578C2F99}";
  const std::string winHttp = "HKCR\\CLSID\\{4A45908C-EF4C-4D12-951B-9595D9CC208B}";
  const std::string library = "\\TypeLib\\[]={6EF447E8-DEC4-47C3-B65D-7B776C644F1D}";
  for (const std::string& line : {
           client + "\\[]=Client Class",
           client + "\\ProgID\\[]=Velandoc.Client.1",
           client + "\\VersionIndependentProgID\\[]=Velandoc.Client",
           client + "\\InprocServer32\\[]=m",
           client + library,
           hdfs + "\\[]=HdfsClient Class",
           hdfs + "\\ProgID\\[]=Velantrica.HdfsClient.1",
           hdfs + "\\VersionIndependentProgID\\[]=Velantrica.HdfsClient",
           hdfs + library,
           winHttp + "\\[]=HdfsWinHttpClient class",
           winHttp + "\\ProgID\\[]=Velantrica.HdfsWinHttpClient.1",
           winHttp + "\\VersionIndependentProgID\\[]=Velantrica.HdfsWinHttpClient",
           winHttp + "\\Programmable",
           winHttp + "\\InprocServer32\\[ThreadingModel]=Apartment",
           winHttp + "\\TypeLib\\[]={779c54aa-fcc0-42ad-84d1-708bb472ea26}",
           winHttp + "\\Version\\[]=1.0",
           std::string("HKCR\\Velantrica.HdfsClient\\CLSID"),
           std::string("HKCR\\Velantrica.HdfsWinHttpClient.1\\[]=HdfsWinHttpClient class"),
           std::string("HKCR\\Velantrica.HdfsWinHttpClient.1\\CLSID\\[]="
                       "{4a45908c-ef4c-4d12-951b-9595d9cc208b}"),
           std::string("HKCR\\Velantrica.HdfsWinHttpClient\\CurVer\\[]="
                       "Velantrica.HdfsWinHttpClient.1"),
       }) {
    EXPECT_THAT(lines, Contains(line));
  }
  EXPECT_THAT(lines, Not(Contains("HKCR\\Velantrica.HdfsWinHttpClient\\CLSID")));
  EXPECT_THAT(lines, Not(Contains(hdfs + "\\Version")));

  for (const WORD script : {WORD{103}, WORD{109}, WORD{110}}) {
    ASSERT_EQ(registrar.ResourceUnregister(script), S_OK) << script;
  }
  EXPECT_THAT(registry.Dump(), ElementsAre("HKCR\\CLSID"));
}

}  // namespace
}  // namespace velandoc
