#include "platform/posix/msxml/parse_error.h"

#include "platform/posix/msxml/guard.h"
#include "platform/posix/msxml/undispatched.h"

namespace velandoc::dom {
namespace {

class ParseError final : public Undispatched<IXMLDOMParseError> {
 public:
  explicit ParseError(const ParseFailure& failure) : m_failure(failure) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (riid != IID_IUnknown && riid != IID_IDispatch && riid != IID_IXMLDOMParseError) {
      return E_NOINTERFACE;
    }
    *object = static_cast<IXMLDOMParseError*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE get_errorCode(LONG* code) override {
    const HRESULT result = Give(code, m_failure.code);
    return SUCCEEDED(result) && m_failure.code == 0 ? S_FALSE : result;
  }
  HRESULT STDMETHODCALLTYPE get_url(BSTR* url) override { return GiveNothing(url); }
  HRESULT STDMETHODCALLTYPE get_reason(BSTR* reason) override {
    return m_failure.reason.empty() ? GiveNothing(reason) : GiveText(reason, m_failure.reason);
  }
  HRESULT STDMETHODCALLTYPE get_srcText(BSTR* text) override { return GiveNothing(text); }
  HRESULT STDMETHODCALLTYPE get_line(LONG* line) override { return Give(line, m_failure.line); }
  HRESULT STDMETHODCALLTYPE get_linepos(LONG* position) override {
    return Give(position, m_failure.column);
  }
  HRESULT STDMETHODCALLTYPE get_filepos(LONG* position) override {
    return Give(position, m_failure.offset);
  }

 private:
  ~ParseError() = default;

  ULONG m_references = 1;
  const ParseFailure m_failure;
};

}  // namespace

HRESULT GiveParseError(const ParseFailure& failure, IXMLDOMParseError** error) {
  if (error == nullptr) return E_INVALIDARG;
  *error = nullptr;
  return Guarded([&] {
    *error = new ParseError(failure);
    return S_OK;
  });
}

}  // namespace velandoc::dom
