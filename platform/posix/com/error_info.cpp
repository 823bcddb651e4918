// The error object: a description that a failing method leaves for its caller, one for each thread.
#include <atomic>
#include <new>

#include "platform/owners.h"
#include "platform/posix/com/automation.h"
#include "platform/posix/com/counted.h"

namespace velandoc {
namespace {

/// A new BSTR in `*copy` with the text; null stays null.
HRESULT CopyText(const Bstr& text, BSTR* copy) {
  if (copy == nullptr) return E_POINTER;
  *copy = nullptr;
  if (text.Get() == nullptr) return S_OK;
  *copy = SysAllocStringLen(text.Get(), SysStringLen(text.Get()));
  return *copy != nullptr ? S_OK : E_OUTOFMEMORY;
}

HRESULT ReplaceText(Bstr& text, LPOLESTR value) {
  *text.Receive() = SysAllocString(value);
  return text.Get() != nullptr || value == nullptr ? S_OK : E_OUTOFMEMORY;
}

class ErrorObject final : public Counted<std::atomic<ULONG>, IErrorInfo, ICreateErrorInfo> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (riid == IID_IUnknown || riid == IID_IErrorInfo) {
      *object = static_cast<IErrorInfo*>(this);
    } else if (riid == IID_ICreateErrorInfo) {
      *object = static_cast<ICreateErrorInfo*>(this);
    } else {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetGUID(GUID* guid) override {
    if (guid == nullptr) return E_POINTER;
    *guid = m_guid;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetSource(BSTR* source) override { return CopyText(m_source, source); }
  HRESULT STDMETHODCALLTYPE GetDescription(BSTR* description) override {
    return CopyText(m_description, description);
  }
  HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* helpFile) override {
    return CopyText(m_helpFile, helpFile);
  }
  HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* helpContext) override {
    if (helpContext == nullptr) return E_POINTER;
    *helpContext = m_helpContext;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE SetGUID(REFGUID guid) override {
    m_guid = guid;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SetSource(LPOLESTR source) override {
    return ReplaceText(m_source, source);
  }
  HRESULT STDMETHODCALLTYPE SetDescription(LPOLESTR description) override {
    return ReplaceText(m_description, description);
  }
  HRESULT STDMETHODCALLTYPE SetHelpFile(LPOLESTR helpFile) override {
    return ReplaceText(m_helpFile, helpFile);
  }
  HRESULT STDMETHODCALLTYPE SetHelpContext(DWORD helpContext) override {
    m_helpContext = helpContext;
    return S_OK;
  }

 private:
  GUID m_guid = GUID_NULL;
  Bstr m_source;
  Bstr m_description;
  Bstr m_helpFile;
  DWORD m_helpContext = 0;
};

/// This library is not unloaded before its threads end, so the destructor of a thread's object is
/// safe here.
thread_local ComPtr<IErrorInfo> current;

}  // namespace
}  // namespace velandoc

STDAPI CreateErrorInfo(ICreateErrorInfo** info) {
  if (info == nullptr) return E_INVALIDARG;
  *info = new (std::nothrow) velandoc::ErrorObject;
  return *info != nullptr ? S_OK : E_OUTOFMEMORY;
}

STDAPI SetErrorInfo(ULONG reserved, IErrorInfo* info) {
  if (reserved != 0) return E_INVALIDARG;
  velandoc::current = info;
  return S_OK;
}

STDAPI GetErrorInfo(ULONG reserved, IErrorInfo** info) {
  if (reserved != 0 || info == nullptr) return E_INVALIDARG;
  *info = velandoc::current.Detach();
  return *info != nullptr ? S_OK : S_FALSE;
}
