// IServerCheck and IClient across apartments, through the merged proxies.
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
    CoRegisterPSClsid(IID_IClient, IID_IServerCheck);
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

// One class object, with IServerCheck's identifier, serves the proxies of both interfaces.
TEST(ProxyTest, AClientIsReachedFromAnotherApartment) {
  ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
  {
    const ProxiesOfThisProcess proxies;
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(DllGetClassObject(CLSID_Client, IID_IClassFactory, factory.ReceiveVoid()), S_OK);
    ComPtr<IClient> client;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IClient, client.ReceiveVoid()), S_OK);
    IStream* stream = nullptr;
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IClient, client.Get(), &stream), S_OK);
    const HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HRESULT marshalled = E_FAIL;
    INT status = 77;
    LONGLONG time = 7;
    HRESULT timeResult = S_OK;
    Bstr url;
    Variant meta;
    HRESULT metaResult = S_OK;
    VARIANT_BOOL success = 7;
    std::thread other([&] {
      CoInitializeEx(nullptr, COINIT_MULTITHREADED);
      {
        const ProxiesOfThisProcess otherProxies;
        ComPtr<IClient> proxy;
        marshalled = CoGetInterfaceAndReleaseStream(stream, IID_IClient, proxy.ReceiveVoid());
        if (SUCCEEDED(marshalled)) {
          // Without a scheme no server is asked.
          proxy->InitFromURL(Bstr(L"no scheme").Get(), &success);
          proxy->get_URL(url.Receive());
          proxy->GetCheckOutStatus(&status);
          timeResult = proxy->get_CheckOutTime(&time);
          metaResult = proxy->get_FrontPageMetaInfo(Bstr(L"key").Get(), &meta.Get());
        }
      }
      CoUninitialize();
      SetEvent(done);
    });
    PumpUntil(done);
    other.join();
    CloseHandle(done);
    EXPECT_EQ(marshalled, S_OK);
    EXPECT_EQ(success, VARIANT_FALSE);
    EXPECT_EQ(url.Text(), L"no scheme");
    EXPECT_EQ(status, -1);
    EXPECT_EQ(timeResult, E_FAIL);
    EXPECT_EQ(metaResult, E_FAIL);
  }
  CoUninitialize();
}

}  // namespace
}  // namespace velandoc
