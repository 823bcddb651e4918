#include "tests/support/scripted_document.h"

#include <utility>

#include "tests/support/call_line.h"

namespace velandoc::testing {

std::string ArgumentText(const VARIANT& argument) {
  if (argument.vt == VT_BSTR) return "'" + Printable(argument.bstrVal) + "'";
  if (argument.vt == VT_I2) return std::to_string(argument.iVal);
  return "of type " + std::to_string(argument.vt);
}

STDMETHODIMP ScriptedScript::GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid,
                                           DISPID* ids) {
  EXPECT_TRUE(IsEqualIID(riid, IID_NULL));
  EXPECT_EQ(count, 1U);
  EXPECT_EQ(lcid, LCID{0x400});
  DISPID id = 100;
  for (const auto& [name, function] : functions) {
    if (name == *names) {
      *ids = id;
      return S_OK;
    }
    ++id;
  }
  calls.push_back("no " + Printable(*names));
  *ids = -1;
  return DISP_E_UNKNOWNNAME;
}

STDMETHODIMP ScriptedScript::Invoke(DISPID member, REFIID riid, LCID lcid, WORD flags,
                                    DISPPARAMS* params, VARIANT* result, EXCEPINFO*, UINT*) {
  EXPECT_TRUE(IsEqualIID(riid, IID_NULL));
  EXPECT_EQ(lcid, LCID{0x400});
  EXPECT_EQ(flags, WORD{DISPATCH_METHOD});
  EXPECT_EQ(params->cNamedArgs, 0U);
  const auto& [name, function] = *std::next(functions.begin(), member - 100);
  Arguments arguments;
  std::string line = Printable(name.c_str()) + "(";
  for (UINT place = params->cArgs; place-- > 0;) {
    arguments.push_back(&params->rgvarg[place]);
    Join(line, ArgumentText(*arguments.back()));
  }
  calls.push_back(line + ")");
  return function(arguments, result);
}

STDMETHODIMP ScriptedDocument::get_Script(IDispatch** found) {
  *found = nullptr;
  if (!hasScript) return E_FAIL;
  script.AddRef();
  *found = &script;
  return S_OK;
}

void PlayForm(ScriptedDocument& document, std::map<WideString, WideString> values) {
  document.script.functions[OLESTR("GetFieldValue")] =
      [values = std::move(values)](const ScriptedScript::Arguments& arguments, VARIANT* result) {
        const auto found = values.find(arguments.at(0)->bstrVal);
        result->bstrVal = Bstr(found != values.end() ? found->second : WideString()).Detach();
        result->vt = VT_BSTR;
        return S_OK;
      };
  document.script.functions[OLESTR("AlertRequired")] = [](const ScriptedScript::Arguments&,
                                                          VARIANT*) { return S_OK; };
}

}  // namespace velandoc::testing
