#include "platform/posix/msxml/class_object.h"

#include "platform/posix/msxml/document.h"

namespace velandoc {
namespace {

/// Without a count: it lives as long as the process.
class DocumentClass final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (riid != IID_IUnknown && riid != IID_IClassFactory) return E_NOINTERFACE;
    *object = static_cast<IClassFactory*>(this);
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return dom::Guarded([&] {
      auto* document = new dom::Document();
      const HRESULT result = document->QueryInterface(riid, object);
      document->Release();
      return result;
    });
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

}  // namespace

HRESULT GetDomClassObject(REFIID riid, void** object) {
  static DocumentClass classObject;
  return classObject.QueryInterface(riid, object);
}

}  // namespace velandoc
