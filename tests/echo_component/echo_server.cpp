// The library's side: one class, {C2E4F5A0-5B0E-4E5A-9C52-6B1A6F0E7D31}, which the tests register
// as VelandocTest.Echo.
#include "platform/com.h"
#include "tests/echo_component/echo_object.h"

namespace velandoc::test {
namespace {

constexpr CLSID kEchoClass = {
    0xC2E4F5A0, 0x5B0E, 0x4E5A, {0x9C, 0x52, 0x6B, 0x1A, 0x6F, 0x0E, 0x7D, 0x31}};

/// Lives as long as the library.
class EchoFactory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool serves = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory);
    *object = serves ? static_cast<IClassFactory*>(this) : nullptr;
    return serves ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    IDispatch* echo = NewEchoObject();
    const HRESULT result = echo->QueryInterface(iid, object);
    echo->Release();
    return result;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

}  // namespace
}  // namespace velandoc::test

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object) {
  static velandoc::test::EchoFactory factory;
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!IsEqualCLSID(clsid, velandoc::test::kEchoClass)) return CLASS_E_CLASSNOTAVAILABLE;
  return factory.QueryInterface(iid, object);
}

STDAPI DllCanUnloadNow() { return S_FALSE; }
