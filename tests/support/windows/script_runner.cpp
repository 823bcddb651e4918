#include "tests/support/script_runner.h"

#include <stdexcept>

#include "platform/owners.h"
// Behind com.h, which includes windows.h.
#include <activscp.h>

namespace velandoc::testing {
namespace {

constexpr CLSID kJScript = {
    0xf414c260, 0x6ac0, 0x11cf, {0xb6, 0xd1, 0x00, 0xaa, 0x00, 0xbb, 0xbb, 0x58}};

// The system's import libraries lack this one.
constexpr IID kParser = {
    0xc7ef7658, 0xe1ee, 0x480e, {0x97, 0xea, 0xd5, 0x2c, 0xb4, 0xd7, 0x6d, 0x17}};

/// What the engine asks its host for. It outlives the engine, so its count tells nothing.
class Site final : public IActiveScriptSite {
 public:
  STDMETHODIMP QueryInterface(REFIID riid, void** object) override {
    const bool known = IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IActiveScriptSite);
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetLCID(LCID*) override { return E_NOTIMPL; }
  STDMETHODIMP GetItemInfo(LPCOLESTR, DWORD, IUnknown**, ITypeInfo**) override { return E_FAIL; }
  STDMETHODIMP GetDocVersionString(BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP OnScriptTerminate(const VARIANT*, const EXCEPINFO*) override { return S_OK; }
  STDMETHODIMP OnStateChange(SCRIPTSTATE) override { return S_OK; }
  STDMETHODIMP OnScriptError(IActiveScriptError*) override { return S_OK; }
  STDMETHODIMP OnEnterScript() override { return S_OK; }
  STDMETHODIMP OnLeaveScript() override { return S_OK; }
};

void Check(HRESULT result) {
  if (FAILED(result)) throw std::runtime_error("the engine failed or the script threw");
}

}  // namespace

struct ScriptRunner::Engine {
  Engine() {
    Check(CoCreateInstance(kJScript, nullptr, CLSCTX_INPROC_SERVER, IID_IActiveScript,
                           engine.ReceiveVoid()));
    Check(engine->QueryInterface(kParser, parser.ReceiveVoid()));
    Check(engine->SetScriptSite(&site));
    Check(parser->InitNew());
    Check(engine->SetScriptState(SCRIPTSTATE_STARTED));
  }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;
  ~Engine() { engine->Close(); }

  HRESULT Parse(const std::string& text, DWORD flags, VARIANT* result) {
    const std::wstring wide(text.begin(), text.end());
    return parser->ParseScriptText(wide.c_str(), nullptr, nullptr, nullptr, 0, 0, flags, result,
                                   nullptr);
  }

  Site site;
  ComPtr<IActiveScript> engine;
  ComPtr<IActiveScriptParse64> parser;
};

ScriptRunner::ScriptRunner() : m_engine(std::make_unique<Engine>()) {}
ScriptRunner::~ScriptRunner() = default;

void ScriptRunner::Run(const std::string& program) { Check(m_engine->Parse(program, 0, nullptr)); }

ComPtr<IDispatch> ScriptRunner::Script() {
  ComPtr<IDispatch> script;
  Check(m_engine->engine->GetScriptDispatch(nullptr, script.Receive()));
  return script;
}

std::string ScriptRunner::Evaluate(const std::string& expression) {
  Variant result;
  // As a text already: the engine's own way to turn a value into one.
  Check(m_engine->Parse("String(" + expression + ")", SCRIPTTEXT_ISEXPRESSION, &result.Get()));
  if (result.Get().vt != VT_BSTR) throw std::runtime_error("the value is no text");
  const WideView text(result.Get().bstrVal, SysStringLen(result.Get().bstrVal));
  std::string narrow;
  for (const OLECHAR unit : text) narrow += static_cast<char>(unit);
  return narrow;
}

}  // namespace velandoc::testing
