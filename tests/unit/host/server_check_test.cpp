// CServerCheck as COM sees it. What makes a server a SharePoint server is tested with the lists
// service.
#include "document/server_check.h"

#include <gtest/gtest.h>

#include "host/exports.h"
#include "platform/mfc/module_state.h"
#include "platform/owners.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using testing::ScriptedWinInet;

class ServerCheckTest : public ::testing::Test {
 protected:
  ServerCheckTest() {
    CoInitialize(nullptr);
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(DllGetClassObject(CLSID_ServerCheck, IID_IClassFactory, factory.ReceiveVoid()), S_OK);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IServerCheck, check.ReceiveVoid()), S_OK);
  }
  ~ServerCheckTest() override {
    check.Reset();
    CoUninitialize();
  }

  ComPtr<IServerCheck> check;
};

TEST_F(ServerCheckTest, AHostNameWithoutASchemeIsNoServer) {
  for (const WideView text : {WideView(OLESTR("localhost")), WideView()}) {
    VARIANT_BOOL isServer = 7;
    EXPECT_EQ(check->Check(Bstr(text).Get(), &isServer), S_OK);
    EXPECT_EQ(isServer, VARIANT_FALSE);
  }
}

// Notes the module state of whoever asks the platform.
class StateWatcher final : public ScriptedWinInet {
 public:
  HWND GetActiveWindow() override {
    state = AfxGetModuleState();
    return ScriptedWinInet::GetActiveWindow();
  }
  AFX_MODULE_STATE* state = nullptr;
};

TEST_F(ServerCheckTest, AServerIsToldWithinTheModuleState) {
  StateWatcher platform;
  platform.answers = {{.chunks = {"<GetListCollectionResult "
                                  "xmlns='http://schemas.microsoft.com/sharepoint/soap/'/>"}}};
  const PortScope<WinInet> scope(platform);
  AFX_MODULE_STATE* const outside = AfxGetModuleState();
  ASSERT_NE(outside, AfxGetStaticModuleState());
  VARIANT_BOOL isServer = 7;
  EXPECT_EQ(check->Check(Bstr(OLESTR("http://h:81/a")).Get(), &isServer), S_OK);
  EXPECT_EQ(isServer, VARIANT_TRUE);
  EXPECT_EQ(platform.state, AfxGetStaticModuleState());
  EXPECT_EQ(AfxGetModuleState(), outside);
}

TEST_F(ServerCheckTest, AFailingServerIsAnAnswerToo) {
  ScriptedWinInet platform;
  platform.answers = {{.error = 12029}};
  const PortScope<WinInet> scope(platform);
  VARIANT_BOOL isServer = 7;
  EXPECT_EQ(check->Check(Bstr(OLESTR("http://h/")).Get(), &isServer), S_OK);
  EXPECT_EQ(isServer, VARIANT_FALSE);
}

TEST_F(ServerCheckTest, ANullTextIsAnEmptyOne) {
  VARIANT_BOOL isServer = 7;
  EXPECT_EQ(check->Check(nullptr, &isServer), S_OK);
  EXPECT_EQ(isServer, VARIANT_FALSE);
}

TEST_F(ServerCheckTest, ScriptsCallItByName) {
  ComPtr<IDispatch> dispatch;
  ASSERT_EQ(check->QueryInterface(IID_IDispatch, dispatch.ReceiveVoid()), S_OK);
  OLECHAR name[] = OLESTR("cHECK");
  LPOLESTR names = name;
  DISPID id = 0;
  ASSERT_EQ(dispatch->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id), S_OK);
  EXPECT_EQ(id, 1);
  Variant url{WideView(OLESTR("no scheme"))};
  DISPPARAMS params{&url.Get(), nullptr, 1, 0};
  Variant result;
  EXPECT_EQ(dispatch->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params,
                             result.Receive(), nullptr, nullptr),
            S_OK);
  EXPECT_EQ(result.Get().vt, VT_BOOL);
  EXPECT_EQ(result.Get().boolVal, VARIANT_FALSE);
}

}  // namespace
}  // namespace velandoc
