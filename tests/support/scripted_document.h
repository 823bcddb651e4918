// A page's document whose script is played: a function of each name, and a record of the calls.
//
// Both objects are the test's own and outlive what holds them; the references that others took are
// counted, and the destructor fails the test if one is left.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/html_document.h"
#include "platform/owners.h"
#include "platform/text.h"

#ifdef _WIN32
#include "tests/support/windows/inert_html_document.h"
#endif

namespace velandoc::testing {

#ifndef _WIN32
using InertHtmlDocument = IHTMLDocument2;
#endif

/// IUnknown without a lifetime, and the part of IDispatch that nobody calls.
template <class Interface>
class Borrowed : public Interface {
 public:
  Borrowed() = default;
  Borrowed(const Borrowed&) = delete;
  Borrowed& operator=(const Borrowed&) = delete;

  STDMETHODIMP QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
  STDMETHODIMP_(ULONG) Release() override { return --m_references; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    return E_NOTIMPL;
  }

 protected:
  ~Borrowed() { EXPECT_EQ(m_references, 0U) << "references are left"; }

 private:
  ULONG m_references = 0;
};

class ScriptedScript final : public Borrowed<IDispatch> {
 public:
  using Arguments = std::vector<const VARIANT*>;  // the script's first parameter first
  using Function = std::function<HRESULT(const Arguments&, VARIANT*)>;

  /// The page's functions. A name that is missing here is unknown.
  std::map<WideString, Function> functions;
  /// "GetFieldValue('Title', -1)": texts in quotes, other arguments of type VT_I2 as numbers.
  std::vector<std::string> calls;

  STDMETHODIMP GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID member, REFIID riid, LCID lcid, WORD flags, DISPPARAMS* params,
                      VARIANT* result, EXCEPINFO* exception, UINT* argErr) override;
};

class ScriptedDocument final : public Borrowed<InertHtmlDocument> {
 public:
  STDMETHODIMP get_Script(IDispatch** found) override;

  ScriptedScript script;
  bool hasScript = true;
};

/// The value of one argument as in ScriptedScript::calls.
std::string ArgumentText(const VARIANT& argument);

/// A page on which GetFieldValue answers from `values` by name (empty text for any other) and
/// AlertRequired does nothing; both are recorded.
void PlayForm(ScriptedDocument& document, std::map<WideString, WideString> values);

}  // namespace velandoc::testing
