#include "platform/posix/dispatch_call.h"

#include "platform/owners.h"
#include "platform/posix/com/case_folding.h"

namespace velandoc {
namespace {

bool IsLeftOut(const VARIANT& argument) {
  return argument.vt == VT_ERROR && argument.scode == DISP_E_PARAMNOTFOUND;
}

const DispatchMember* FindMember(DispatchMembers members, DISPID id, WORD flags) {
  for (const DispatchMember& member : members) {
    if (member.id == id && (member.kind & flags) != 0) return &member;
  }
  return nullptr;
}

/// The arguments of one call in the order of the parameters, with what was made for them.
class PreparedArguments {
 public:
  PreparedArguments(const DispatchMember& member, LCID lcid) : m_member(member), m_lcid(lcid) {}

  const VARIANT* Get() const { return m_arguments.data(); }

  /// Sorts the arguments out and converts them. `argErr` is the index in `params` of the one that
  /// does not fit.
  HRESULT Prepare(const DISPPARAMS& params, UINT& argErr) {
    std::array<UINT, kMaxDispatchArguments> sources{};
    sources.fill(kNone);
    if (const HRESULT result = Assign(params, sources, argErr); FAILED(result)) return result;
    for (std::size_t i = 0; i < m_member.count; ++i) {
      const bool isGiven = sources[i] != kNone && !IsLeftOut(params.rgvarg[sources[i]]);
      const HRESULT result =
          isGiven ? Convert(params.rgvarg[sources[i]], i) : SetDefault(i, sources[i] != kNone);
      if (FAILED(result)) {
        if (sources[i] != kNone) argErr = sources[i];
        return result;
      }
    }
    return S_OK;
  }

 private:
  static constexpr UINT kNone = 0xFFFFFFFF;

  /// Named arguments come first in the array, then the others, the last one first.
  HRESULT Assign(const DISPPARAMS& params, std::array<UINT, kMaxDispatchArguments>& sources,
                 UINT& argErr) const {
    if (params.cArgs > m_member.count) return DISP_E_BADPARAMCOUNT;
    if (params.cNamedArgs > params.cArgs) return DISP_E_BADPARAMCOUNT;
    for (UINT k = params.cNamedArgs; k < params.cArgs; ++k) sources[params.cArgs - 1 - k] = k;
    for (UINT k = 0; k < params.cNamedArgs; ++k) {
      const DISPID id = params.rgdispidNamedArgs[k];
      std::size_t at = static_cast<std::size_t>(id);
      if (id == DISPID_PROPERTYPUT && m_member.kind == DISPATCH_PROPERTYPUT) {
        at = m_member.count - 1;
      } else if (id < 0 || at >= m_member.count) {
        argErr = k;
        return DISP_E_PARAMNOTFOUND;
      }
      // Given by its place and by its name.
      if (sources[at] != kNone) {
        argErr = k;
        return DISP_E_BADPARAMCOUNT;
      }
      sources[at] = k;
    }
    return S_OK;
  }

  HRESULT SetDefault(std::size_t i, bool wasGiven) {
    const DispatchArgument& argument = m_member.arguments[i];
    Variant value;
    switch (argument.absence) {
      case DispatchArgument::Absence::kRequired:
        return wasGiven ? DISP_E_PARAMNOTOPTIONAL : DISP_E_BADPARAMCOUNT;
      case DispatchArgument::Absence::kMissing:
        value = Variant(DISP_E_PARAMNOTFOUND, VT_ERROR);
        // A VARIANT takes it as it is; any other type has no way to say it.
        if (m_member.types[i].type != VT_VARIANT) return DISP_E_PARAMNOTOPTIONAL;
        break;
      case DispatchArgument::Absence::kNumber:
        value = Variant(argument.number, VT_I4);
        break;
      case DispatchArgument::Absence::kText:
        value = Variant(WideView(argument.text));
        break;
    }
    return Convert(value.Get(), i);
  }

  /// Brings an argument to its parameter's type. What is made for that lives in m_owned until the
  /// call is over.
  HRESULT Convert(const VARIANT& source, std::size_t i) {
    const DispatchType& type = m_member.types[i];
    VARIANT& argument = m_arguments[i];
    VARIANT& owned = m_owned[i].Get();
    if (type.isByRef && source.vt == (VT_BYREF | type.type)) {
      argument = source;  // the caller's own variable
      return S_OK;
    }
    const HRESULT result = ConvertValue(source, type, owned);
    if (FAILED(result)) return result;
    if (!type.isByRef) {
      argument = owned;
      return S_OK;
    }
    // A variable of our own: what the member writes there, the caller has asked to lose.
    argument = VARIANT{};
    argument.vt = static_cast<VARTYPE>(VT_BYREF | type.type);
    argument.byref = type.type == VT_VARIANT ? static_cast<void*>(&owned) : &owned.llVal;
    return S_OK;
  }

  HRESULT ConvertValue(const VARIANT& source, const DispatchType& type, VARIANT& value) const {
    if (type.type == VT_VARIANT) return VariantCopyInd(&value, &source);
    if (type.iid == nullptr) return VariantChangeTypeEx(&value, &source, m_lcid, 0, type.type);
    Variant given;
    if (const HRESULT result = VariantCopyInd(&given.Get(), &source); FAILED(result)) return result;
    if (given.Get().vt != VT_DISPATCH && given.Get().vt != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
    void* object = nullptr;
    if (given.Get().punkVal != nullptr &&
        FAILED(given.Get().punkVal->QueryInterface(*type.iid, &object))) {
      return DISP_E_TYPEMISMATCH;
    }
    // Held by the pointer that was asked for; an interface begins with the operations of IUnknown.
    value.byref = object;
    value.vt = type.type;
    return S_OK;
  }

  const DispatchMember& m_member;
  LCID m_lcid;
  std::array<VARIANT, kMaxDispatchArguments> m_arguments{};
  std::array<Variant, kMaxDispatchArguments> m_owned;
};

/// Takes the thread's error object. The called object is not asked by ISupportErrorInfo whether it
/// is its own: scripts are to see what objects without that interface leave, and an older object of
/// a thread shows with a member that does not clear it.
void FillException(HRESULT failure, EXCEPINFO& exception) {
  exception = EXCEPINFO{};
  exception.scode = failure;
  ComPtr<IErrorInfo> info;
  if (GetErrorInfo(0, info.Receive()) != S_OK) return;
  info->GetSource(&exception.bstrSource);
  info->GetDescription(&exception.bstrDescription);
  info->GetHelpFile(&exception.bstrHelpFile);
  info->GetHelpContext(&exception.dwHelpContext);
}

}  // namespace

HRESULT FindDispatchIds(DispatchMembers members, LPOLESTR* names, UINT count, DISPID* ids) {
  if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
  std::fill_n(ids, count, DISPID_UNKNOWN);
  // A property has a row for reading and one for writing: the arguments are those of the first.
  const auto member = std::find_if(members.begin(), members.end(), [&](const auto& row) {
    return EqualsIgnoringCase(row.name, names[0]);
  });
  if (member == members.end()) return DISP_E_UNKNOWNNAME;
  ids[0] = member->id;
  HRESULT result = S_OK;
  for (UINT i = 1; i < count; ++i) {
    for (std::size_t k = 0; k < member->count; ++k) {
      const LPCOLESTR name = member->arguments[k].name;
      if (name != nullptr && EqualsIgnoringCase(name, names[i])) ids[i] = static_cast<DISPID>(k);
    }
    if (ids[i] == DISPID_UNKNOWN) result = DISP_E_UNKNOWNNAME;
  }
  return result;
}

HRESULT CallDispatchMember(void* object, DispatchMembers members, DISPID id, LCID lcid, WORD flags,
                           DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                           UINT* argErr) {
  if (result != nullptr) VariantInit(result);
  if (params == nullptr) return E_INVALIDARG;
  const DispatchMember* const member = FindMember(members, id, flags);
  if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
  if (member->kind == DISPATCH_PROPERTYPUT &&
      (params->cNamedArgs == 0 || params->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT)) {
    return DISP_E_PARAMNOTFOUND;
  }
  PreparedArguments arguments(*member, lcid);
  UINT failed = 0;
  if (const HRESULT prepared = arguments.Prepare(*params, failed); FAILED(prepared)) {
    if (argErr != nullptr) *argErr = failed;
    return prepared;
  }
  Variant returned;
  const HRESULT called = member->call(object, arguments.Get(), returned.Get());
  if (FAILED(called)) {
    if (exception != nullptr) FillException(called, *exception);
    return DISP_E_EXCEPTION;
  }
  if (result != nullptr) std::swap(*result, returned.Get());
  return S_OK;
}

}  // namespace velandoc
