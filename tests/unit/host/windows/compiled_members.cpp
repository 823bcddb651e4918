// Windows: the members read back from the type library in the program's resources.
#include <gtest/gtest.h>

#include "platform/module_path.h"
#include "platform/owners.h"
#include "tests/support/variant_text.h"
#include "tests/unit/host/interface_members.h"

namespace velandoc::testing {
namespace {

std::string TypeText(ITypeInfo& info, const TYPEDESC& type) {
  switch (type.vt) {
    case VT_BOOL:
      return "BOOL";
    case VT_BSTR:
      return "BSTR";
    case VT_UI2:
      return "UI2";
    case VT_I4:
      return "I4";
    case VT_I8:
      return "I8";
    case VT_INT:
      return "INT";
    case VT_R8:
      return "R8";
    case VT_VARIANT:
      return "VARIANT";
    case VT_PTR:
      return TypeText(info, *type.lptdesc) + "*";
    case VT_USERDEFINED: {
      ComPtr<ITypeInfo> other;
      Bstr name;
      EXPECT_EQ(info.GetRefTypeInfo(type.hreftype, other.Receive()), S_OK);
      EXPECT_EQ(other->GetDocumentation(MEMBERID_NIL, name.Receive(), nullptr, nullptr, nullptr),
                S_OK);
      return DescribeText(name.View());
    }
    default:
      return "type " + std::to_string(type.vt);
  }
}

std::string DefaultText(const VARIANT& value) {
  switch (value.vt) {
    case VT_BOOL:
      return std::to_string(value.boolVal);
    case VT_I4:
      return std::to_string(value.lVal);
    case VT_BSTR:
      return "'" + DescribeText(ViewOf(value.bstrVal)) + "'";
    default:
      return DescribeVariant(value);
  }
}

/// `names` are the function's and its arguments'; a put's new value has none.
std::string ArgumentText(ITypeInfo& info, const ELEMDESC& argument, const BSTR* name) {
  std::string text = TypeText(info, argument.tdesc);
  if (name != nullptr) text += " " + DescribeText(ViewOf(*name));
  const USHORT flags = argument.paramdesc.wParamFlags;
  EXPECT_NE(flags & PARAMFLAG_FIN, 0) << text;
  if ((flags & PARAMFLAG_FHASDEFAULT) != 0) {
    EXPECT_NE(flags & PARAMFLAG_FOPT, 0) << text;
    return text + " = " + DefaultText(argument.paramdesc.pparamdescex->varDefaultValue);
  }
  return (flags & PARAMFLAG_FOPT) != 0 ? text + "?" : text;
}

MemberText Describe(ITypeInfo& info, const FUNCDESC& function) {
  const char* const kind = function.invkind == INVOKE_FUNC          ? " method "
                           : function.invkind == INVOKE_PROPERTYGET ? " get "
                                                                    : " put ";
  constexpr UINT kMaxNames = 12;
  BSTR names[kMaxNames] = {};
  UINT count = 0;
  EXPECT_EQ(info.GetNames(function.memid, names, kMaxNames, &count), S_OK);
  MemberText text;
  text.member = std::to_string(function.memid) + kind + DescribeText(ViewOf(names[0])) + "(";
  for (SHORT at = 0; at < function.cParams; ++at) {
    const ELEMDESC& argument = function.lprgelemdescParam[at];
    const BSTR* const name = function.invkind != INVOKE_PROPERTYPUT ? &names[at + 1] : nullptr;
    if ((argument.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) {
      EXPECT_EQ(argument.tdesc.vt, VT_PTR) << text.member;
      text.result = TypeText(info, *argument.tdesc.lptdesc);
      if (*name != nullptr) text.result += " " + DescribeText(ViewOf(*name));
      continue;
    }
    text.member += (at != 0 ? ", " : "") + ArgumentText(info, argument, name);
  }
  text.member += ")";
  for (const BSTR name : names) SysFreeString(name);
  Bstr help;
  EXPECT_EQ(info.GetDocumentation(function.memid, nullptr, help.Receive(), nullptr, nullptr), S_OK);
  text.help = DescribeText(help.View());
  EXPECT_EQ(function.elemdescFunc.tdesc.vt, VT_HRESULT) << text.member;
  return text;
}

}  // namespace

std::vector<MemberText> DescribeMembers(REFIID iid) {
  std::vector<MemberText> members;
  ComPtr<ITypeLib> library;
  ComPtr<ITypeInfo> dispatch;
  ComPtr<ITypeInfo> info;
  HREFTYPE reference = 0;
  // A dual interface is found by its dispatch side; -1 leads to that of the virtual table.
  constexpr UINT kOtherSide = static_cast<UINT>(-1);
  if (FAILED(LoadTypeLibEx(GetModulePath().c_str(), REGKIND_NONE, library.Receive())) ||
      FAILED(library->GetTypeInfoOfGuid(iid, dispatch.Receive())) ||
      FAILED(dispatch->GetRefTypeOfImplType(kOtherSide, &reference)) ||
      FAILED(dispatch->GetRefTypeInfo(reference, info.Receive()))) {
    ADD_FAILURE() << "the interface is not in the library";
    return members;
  }
  TYPEATTR* attributes = nullptr;
  EXPECT_EQ(info->GetTypeAttr(&attributes), S_OK);
  // IUnknown and IDispatch take the first seven places of eight bytes.
  EXPECT_EQ(attributes->cbSizeVft, (7 + attributes->cFuncs) * 8);
  for (UINT at = 0; at < attributes->cFuncs; ++at) {
    FUNCDESC* function = nullptr;
    EXPECT_EQ(info->GetFuncDesc(at, &function), S_OK);
    members.push_back(Describe(*info, *function));
    EXPECT_EQ(function->oVft, static_cast<SHORT>((7 + at) * 8)) << members.back().member;
    info->ReleaseFuncDesc(function);
  }
  info->ReleaseTypeAttr(attributes);
  return members;
}

bool KeepsHelpAndResultNames() { return true; }

}  // namespace velandoc::testing
