// IServerCheck across apartments, through the merged proxies.
#include <gtest/gtest.h>

#include <thread>

#include "host/exports.h"
#include "platform/owners.h"
#include "velandoc_idl.h"

namespace velandoc {
namespace {

/// An IServerCheck that notes its thread and answers by the text.
class CallRecorder final : public IServerCheck {
 public:
  STDMETHODIMP QueryInterface(REFIID riid, void** object) override {
    *object = nullptr;
    if (!IsEqualIID(riid, IID_IUnknown) && !IsEqualIID(riid, IID_IServerCheck)) {
      return E_NOINTERFACE;
    }
    *object = this;
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP Check(BSTR text, VARIANT_BOOL* isServer) override {
    thread = GetCurrentThreadId();
    seen.assign(text, SysStringLen(text));
    *isServer = VARIANT_TRUE;
    return S_FALSE;
  }

  DWORD thread = 0;
  WideString seen;
};

/// Serves calls from other apartments until `done` is signalled.
void PumpUntil(HANDLE done) {
  for (;;) {
    const DWORD woken = MsgWaitForMultipleObjects(1, &done, FALSE, 20000, QS_ALLINPUT);
    if (woken != WAIT_OBJECT_0 + 1) return;
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  }
}

/// Makes the proxies known to the apartment of the calling thread for a scope, without the
/// registry.
class ProxiesOfThisProcess {
 public:
  ProxiesOfThisProcess() {
    ComPtr<IUnknown> factory;
    DllGetClassObject(IID_IServerCheck, IID_IPSFactoryBuffer, factory.ReceiveVoid());
    CoRegisterClassObject(IID_IServerCheck, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                          &m_cookie);
    CoRegisterPSClsid(IID_IServerCheck, IID_IServerCheck);
  }
  ~ProxiesOfThisProcess() { CoRevokeClassObject(m_cookie); }
  ProxiesOfThisProcess(const ProxiesOfThisProcess&) = delete;
  ProxiesOfThisProcess& operator=(const ProxiesOfThisProcess&) = delete;

 private:
  DWORD m_cookie = 0;
};

TEST(ProxyTest, TheFactoryOfTheProxiesIsServed) {
  ComPtr<IUnknown> factory;
  EXPECT_EQ(DllGetClassObject(IID_IServerCheck, IID_IPSFactoryBuffer, factory.ReceiveVoid()), S_OK);
}

TEST(ProxyTest, ACallCrossesApartments) {
  ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
  {
    const ProxiesOfThisProcess proxies;
    CallRecorder recorder;
    IStream* stream = nullptr;
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IServerCheck, &recorder, &stream), S_OK);
    const HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HRESULT result = E_FAIL;
    VARIANT_BOOL isServer = VARIANT_FALSE;
    std::thread other([&] {
      CoInitializeEx(nullptr, COINIT_MULTITHREADED);
      {
        const ProxiesOfThisProcess otherProxies;
        ComPtr<IServerCheck> proxy;
        result = CoGetInterfaceAndReleaseStream(stream, IID_IServerCheck, proxy.ReceiveVoid());
        if (SUCCEEDED(result)) {
          const Bstr text(L"http://\u00E9\u20AC");
          result = proxy->Check(text.Get(), &isServer);
        }
      }
      CoUninitialize();
      SetEvent(done);
    });
    PumpUntil(done);
    other.join();
    CloseHandle(done);
    EXPECT_EQ(result, S_FALSE);
    EXPECT_EQ(isServer, VARIANT_TRUE);
    EXPECT_EQ(recorder.seen, L"http://\u00E9\u20AC");
    EXPECT_EQ(recorder.thread, GetCurrentThreadId()) << "the call did not come home";
  }
  CoUninitialize();
}

}  // namespace
}  // namespace velandoc
