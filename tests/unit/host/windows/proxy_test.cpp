// The component's interfaces across apartments, through the merged proxies.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "host/exports.h"
#include "platform/owners.h"
#include "velandoc_idl.h"

namespace velandoc {

/// The beginning of the system's ExtendedProxyFileInfo, whose header is for C alone.
struct ProxyFile {
  const void* proxies;
  const void* stubs;
  const char* const* names;
  const void* delegated;
  const void* lookUp;
  unsigned short count;
};

}  // namespace velandoc

// The interface compiler's list of what the proxies cover.
extern "C" const velandoc::ProxyFile velandoc_ProxyFileInfo;

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
    CoRegisterPSClsid(IID_IHdfsClient, IID_IServerCheck);
    CoRegisterPSClsid(IID_IConnectionError, IID_IServerCheck);
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

TEST(ProxyTest, FourInterfacesAreCoveredInTheirOrder) {
  std::vector<std::string> names;
  for (unsigned short i = 0; i < velandoc_ProxyFileInfo.count; ++i) {
    names.emplace_back(velandoc_ProxyFileInfo.names[i]);
  }
  EXPECT_EQ(names, (std::vector<std::string>{"IServerCheck", "IClient", "IHdfsClient",
                                             "IConnectionError"}));
}

/// Makes an object of the class in an apartment of its own, with a thread that serves it, and
/// hands its interface to the caller's apartment; the object goes with the last reference to it.
class ObjectElsewhere {
 public:
  ObjectElsewhere(REFCLSID clsid, REFIID iid) {
    const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    m_done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    m_thread = std::thread([this, clsid, iid, ready] {
      CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
      {
        const ProxiesOfThisProcess proxies;
        ComPtr<IClassFactory> factory;
        ComPtr<IUnknown> object;
        DllGetClassObject(clsid, IID_IClassFactory, factory.ReceiveVoid());
        factory->CreateInstance(nullptr, IID_IUnknown, object.ReceiveVoid());
        marshalled = CoMarshalInterThreadInterfaceInStream(iid, object.Get(), &m_stream);
        thread = GetCurrentThreadId();
        SetEvent(ready);
        PumpUntil(m_done);
      }
      CoUninitialize();
    });
    WaitForSingleObject(ready, 20000);
    CloseHandle(ready);
  }
  ~ObjectElsewhere() {
    SetEvent(m_done);
    m_thread.join();
    CloseHandle(m_done);
  }
  ObjectElsewhere(const ObjectElsewhere&) = delete;
  ObjectElsewhere& operator=(const ObjectElsewhere&) = delete;

  /// Once.
  HRESULT Unmarshal(REFIID iid, void** object) {
    IStream* const stream = m_stream;
    m_stream = nullptr;
    return CoGetInterfaceAndReleaseStream(stream, iid, object);
  }

  HRESULT marshalled = E_FAIL;
  DWORD thread = 0;

 private:
  IStream* m_stream = nullptr;
  HANDLE m_done = nullptr;
  std::thread m_thread;
};

class ForeignObjectTest : public ::testing::Test {
 protected:
  ForeignObjectTest() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ~ForeignObjectTest() override { CoUninitialize(); }
};

TEST_F(ForeignObjectTest, AnHdfsClientIsDrivenFromAnotherSingleThreadedApartment) {
  const ProxiesOfThisProcess proxies;
  for (const CLSID& clsid : {CLSID_HdfsClient, CLSID_HdfsClientWinHttp}) {
    ObjectElsewhere elsewhere(clsid, IID_IHdfsClient);
    ASSERT_EQ(elsewhere.marshalled, S_OK);
    EXPECT_NE(elsewhere.thread, GetCurrentThreadId());
    ComPtr<IHdfsClient> client;
    ASSERT_EQ(elsewhere.Unmarshal(IID_IHdfsClient, client.ReceiveVoid()), S_OK);
    EXPECT_EQ(client->put_Port(50470), S_OK);
    USHORT port = 0;
    EXPECT_EQ(client->get_Port(&port), S_OK);
    EXPECT_EQ(port, 50470);
    EXPECT_EQ(client->put_ServerName(Bstr(L"h\u00E9").Get()), S_OK);
    Bstr url;
    EXPECT_EQ(client->get_BaseUrl(url.Receive()), S_OK);
    EXPECT_NE(url.Text().find(L"h\u00E9"), std::wstring::npos);
    // Nothing listens on this port: a request that fails, whose error is an object of its own.
    EXPECT_EQ(client->put_ServerName(Bstr(L"127.0.0.1").Get()), S_OK);
    EXPECT_EQ(client->put_Port(1), S_OK);
    Bstr text;
    const HRESULT result = client->GetText(text.Receive());
    EXPECT_EQ(result, IsEqualCLSID(clsid, CLSID_HdfsClient) ? E_FAIL : S_OK);
    ComPtr<IConnectionError> error;
    ASSERT_EQ(client->get_ConnectionError(error.Receive()), S_OK);
    ASSERT_TRUE(error);
    LONG code = 7;
    EXPECT_EQ(error->get_HttpCode(&code), S_OK);
    EXPECT_EQ(code, 0);
    Bstr message;
    EXPECT_EQ(error->get_Message(message.Receive()), S_OK);
  }
}

TEST_F(ForeignObjectTest, AClientAndAServerCheckToo) {
  const ProxiesOfThisProcess proxies;
  ObjectElsewhere check(CLSID_ServerCheck, IID_IServerCheck);
  ComPtr<IServerCheck> checker;
  ASSERT_EQ(check.Unmarshal(IID_IServerCheck, checker.ReceiveVoid()), S_OK);
  VARIANT_BOOL isServer = VARIANT_TRUE;
  EXPECT_EQ(checker->Check(Bstr(L"no scheme").Get(), &isServer), S_OK);
  EXPECT_EQ(isServer, VARIANT_FALSE);
  ObjectElsewhere document(CLSID_Client, IID_IClient);
  ComPtr<IClient> client;
  ASSERT_EQ(document.Unmarshal(IID_IClient, client.ReceiveVoid()), S_OK);
  INT status = 7;
  EXPECT_EQ(client->GetCheckOutStatus(&status), S_OK);
  EXPECT_EQ(status, -1);
}

TEST_F(ForeignObjectTest, RawRequestsStayInTheirApartment) {
  const ProxiesOfThisProcess proxies;
  ObjectElsewhere elsewhere(CLSID_HdfsClient, IID_IRawRequest);
  EXPECT_TRUE(FAILED(elsewhere.marshalled));
  ObjectElsewhere reachable(CLSID_HdfsClient, IID_IHdfsClient);
  ComPtr<IHdfsClient> client;
  ASSERT_EQ(reachable.Unmarshal(IID_IHdfsClient, client.ReceiveVoid()), S_OK);
  ComPtr<IRawRequest> raw;
  EXPECT_TRUE(FAILED(client->QueryInterface(IID_IRawRequest, raw.ReceiveVoid())));
  EXPECT_FALSE(raw);
}

}  // namespace
}  // namespace velandoc
