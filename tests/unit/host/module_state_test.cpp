// The module-state guard and the application object.
#include "platform/mfc/module_state.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "host/velandoc_app.h"
#include "platform/atl/base_module.h"
#include "platform/module_path.h"
#include "platform/server_runtime.h"
#include "tests/support/recording_runtime.h"
#include "tests/support/scripted_modules.h"

namespace velandoc {
namespace {

TEST(ModuleStateTest, TheGuardSelectsTheLibraryAndRestoresTheCaller) {
  AFX_MODULE_STATE callers;
  callers.m_hCurrentResourceHandle = reinterpret_cast<HINSTANCE>(&callers);
  ASSERT_EQ(AfxSetModuleState(&callers), nullptr);
  {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    EXPECT_EQ(AfxGetModuleState(), AfxGetStaticModuleState());
    EXPECT_EQ(AfxGetResourceHandle(), GetModuleInstance());
    EXPECT_EQ(AfxGetInstanceHandle(), GetModuleInstance());
  }
  EXPECT_EQ(AfxGetModuleState(), &callers);
  EXPECT_EQ(AfxGetResourceHandle(), reinterpret_cast<HINSTANCE>(&callers));
  EXPECT_EQ(AfxSetModuleState(nullptr), &callers);
}

TEST(ModuleStateTest, GuardsNest) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  {
    AFX_MODULE_STATE other;
    const AFX_MAINTAIN_STATE2 inner(&other);
    EXPECT_EQ(AfxGetModuleState(), &other);
  }
  EXPECT_EQ(AfxGetModuleState(), AfxGetStaticModuleState());
}

TEST(ModuleStateTest, ExceptionsRestoreTheCaller) {
  AFX_MODULE_STATE* const before = AfxGetModuleState();
  try {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    throw 1;
  } catch (int) {
  }
  EXPECT_EQ(AfxGetModuleState(), before);
}

TEST(ModuleStateTest, OtherThreadsKeepTheirs) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  AFX_MODULE_STATE* seen = AfxGetStaticModuleState();
  std::thread([&seen] { seen = AfxGetModuleState(); }).join();
  EXPECT_NE(seen, AfxGetStaticModuleState());
}

TEST(ModuleStateTest, WithoutAGuardTheProgramsStateIsCurrent) {
  EXPECT_NE(AfxGetModuleState(), AfxGetStaticModuleState());
  EXPECT_EQ(AfxGetResourceHandle(), nullptr);
}

TEST(ModuleStateTest, LocksOfTheApplicationKeepItsModule) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  EXPECT_EQ(AfxDllCanUnloadNow(), S_OK);
  AfxOleLockApp();
  EXPECT_EQ(AfxDllCanUnloadNow(), S_FALSE);
  AfxOleUnlockApp();
  EXPECT_EQ(AfxDllCanUnloadNow(), S_OK);
}

/// An application that finds a satellite.
class TranslatedApp final : public CVelandocApp {
 public:
  TranslatedApp(HINSTANCE satellite, std::vector<std::string>& steps)
      : m_steps(steps), m_satellite(satellite) {}
  HINSTANCE LoadAppLangResourceDLL() override {
    m_steps.push_back("LoadAppLangResourceDLL");
    return m_satellite;
  }

 private:
  std::vector<std::string>& m_steps;
  HINSTANCE m_satellite;
};

class VelandocAppTest : public testing::Test {
 protected:
  void TearDown() override {
    AfxGetStaticModuleState()->m_hCurrentResourceHandle = GetModuleInstance();
    AtlBaseModule().SetResourceInstance(GetModuleInstance());
  }
  RecordingRuntime runtime;
  PortScope<ServerRuntime> scope{runtime};
};

TEST_F(VelandocAppTest, TheLibraryIsTheProxiesModule) {
  CVelandocApp app;
  EXPECT_EQ(app.InitInstance(), TRUE);
  EXPECT_EQ(runtime.proxyModule, GetModuleInstance());
  EXPECT_EQ(AtlBaseModule().GetResourceInstance(), GetModuleInstance());
  EXPECT_EQ(AfxGetStaticModuleState()->m_hCurrentResourceHandle, GetModuleInstance());
  EXPECT_TRUE(app.GetMessageMap()->entries.empty());
  EXPECT_EQ(app.ExitInstance(), 0);
}

TEST_F(VelandocAppTest, ASatelliteIsTheResourceInstanceOfBoth) {
  ScriptedModules modules;
  const PortScope<ModuleServices> modulesScope(modules);
  const HINSTANCE satellite = reinterpret_cast<HINSTANCE>(this);
  TranslatedApp app(satellite, runtime.calls);
  EXPECT_EQ(app.InitInstance(), TRUE);
  EXPECT_EQ(runtime.calls, (std::vector<std::string>{"SetProxyModule", "LoadAppLangResourceDLL"}));
  EXPECT_EQ(app.m_hLangResourceDLL, satellite);
  EXPECT_EQ(AtlBaseModule().GetResourceInstance(), satellite);
  EXPECT_EQ(AtlBaseModule().GetModuleInstance(), GetModuleInstance());
  EXPECT_EQ(AfxGetStaticModuleState()->m_hCurrentResourceHandle, satellite);
}

}  // namespace
}  // namespace velandoc
