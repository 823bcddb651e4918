#include "platform/posix/msxml/parse_error.h"

#include "platform/posix/msxml/companion.h"
#include "platform/posix/msxml/guard.h"

namespace velandoc::dom {
namespace {

class ParseError final : public Companion<IXMLDOMParseError, IID_IXMLDOMParseError> {
 public:
  explicit ParseError(const ParseFailure& failure) : m_failure(failure) {}

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
