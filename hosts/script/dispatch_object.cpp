#include "hosts/script/dispatch_object.h"

#include <algorithm>
#include <vector>

#include "hosts/script/errors.h"
#include "hosts/script/script_text.h"
#include "hosts/script/variant_value.h"

namespace velandoc {
namespace {

// Keys that no script can spell, and that a Proxy hands to what it stands for without a trap.
#define VELANDOC_KEY_REFERENCE DUK_HIDDEN_SYMBOL("reference")
#define VELANDOC_KEY_OWNER DUK_HIDDEN_SYMBOL("owner")
#define VELANDOC_KEY_MEMBER DUK_HIDDEN_SYMBOL("member")
constexpr char kStashTable[] = "references";
constexpr char kStashTraps[] = "dispatchTraps";

/// The texts that an object leaves behind with a failure.
class ExceptionInfo {
 public:
  ExceptionInfo() = default;
  ExceptionInfo(const ExceptionInfo&) = delete;
  ExceptionInfo& operator=(const ExceptionInfo&) = delete;
  ~ExceptionInfo() {
    SysFreeString(m_info.bstrSource);
    SysFreeString(m_info.bstrDescription);
    SysFreeString(m_info.bstrHelpFile);
  }

  EXCEPINFO* Receive() { return &m_info; }
  const EXCEPINFO& Complete() {
    if (m_info.pfnDeferredFillIn != nullptr) m_info.pfnDeferredFillIn(&m_info);
    m_info.pfnDeferredFillIn = nullptr;
    return m_info;
  }

 private:
  EXCEPINFO m_info = {};
};

ReferenceTable& Table(duk_context* ctx) {
  duk_push_global_stash(ctx);
  duk_get_prop_string(ctx, -1, kStashTable);
  auto* table = static_cast<ReferenceTable*>(duk_get_pointer(ctx, -1));
  duk_pop_2(ctx);
  return *table;
}

Reference* ReferenceOf(duk_context* ctx, duk_idx_t index) {
  if (!duk_is_object(ctx, index)) return nullptr;
  duk_get_prop_literal(ctx, index, VELANDOC_KEY_REFERENCE);
  auto* reference = static_cast<Reference*>(duk_get_pointer_default(ctx, -1, nullptr));
  duk_pop(ctx);
  return reference;
}

/// The automation object behind the first argument of a trap.
ComPtr<IDispatch> TrappedDispatch(duk_context* ctx) {
  const Reference* reference = ReferenceOf(ctx, 0);
  if (reference == nullptr) throw MemberNotSupported();
  return reference->dispatch;
}

/// False if the object has no member of this name.
bool FindMember(const ComPtr<IDispatch>& dispatch, const WideString& name, DISPID& member) {
  // COM's names end at their first NUL.
  if (name.empty() || name.find(OLESTR('\0')) != WideString::npos) return false;
  WideString writable = name;
  LPOLESTR names = writable.data();
  const HRESULT result = dispatch->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &member);
  if (result == DISP_E_UNKNOWNNAME || (SUCCEEDED(result) && member == DISPID_UNKNOWN)) return false;
  if (FAILED(result)) throw ScriptError{result, {}, false};
  return true;
}

HRESULT Invoke(const ComPtr<IDispatch>& dispatch, DISPID member, WORD flags, DISPPARAMS& params,
               VARIANT* result, ExceptionInfo& exception) {
  return dispatch->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, result,
                          exception.Receive(), nullptr);
}

/// The function that a member which needs a call reads as. It keeps its object alive.
void PushMember(duk_context* ctx, duk_idx_t owner, DISPID member);

/// Whether a read without arguments failed because the member wants a call.
bool WantsCall(HRESULT result) {
  return result == DISP_E_MEMBERNOTFOUND || result == DISP_E_BADPARAMCOUNT ||
         result == DISP_E_PARAMNOTOPTIONAL;
}

duk_ret_t CallMember(duk_context* ctx) {
  const duk_idx_t count = duk_get_top(ctx);
  std::vector<Variant> arguments;
  arguments.reserve(static_cast<std::size_t>(count));
  for (duk_idx_t i = count; i > 0; --i) arguments.push_back(ToVariant(ctx, i - 1));
  std::vector<VARIANT> borrowed;
  borrowed.reserve(arguments.size());
  for (Variant& argument : arguments) borrowed.push_back(argument.Get());

  duk_push_current_function(ctx);
  duk_get_prop_literal(ctx, -1, VELANDOC_KEY_MEMBER);
  const DISPID member = duk_get_int(ctx, -1);
  duk_get_prop_literal(ctx, -2, VELANDOC_KEY_OWNER);
  const Reference* reference = ReferenceOf(ctx, -1);
  if (reference == nullptr) throw MemberNotSupported();
  const ComPtr<IDispatch> dispatch = reference->dispatch;

  DISPPARAMS params = {borrowed.data(), nullptr, static_cast<UINT>(borrowed.size()), 0};
  Variant result;
  ExceptionInfo exception;
  const HRESULT called = Invoke(dispatch, member, DISPATCH_METHOD | DISPATCH_PROPERTYGET, params,
                                result.Receive(), exception);
  if (FAILED(called)) throw ErrorOfCall(called, exception.Complete());
  PushVariant(ctx, result.Get());
  return 1;
}

void PushMember(duk_context* ctx, duk_idx_t owner, DISPID member) {
  const duk_idx_t ownerAt = duk_normalize_index(ctx, owner);
  duk_push_c_function(ctx, Native<CallMember>, DUK_VARARGS);
  duk_dup(ctx, ownerAt);
  duk_put_prop_literal(ctx, -2, VELANDOC_KEY_OWNER);
  duk_push_int(ctx, member);
  duk_put_prop_literal(ctx, -2, VELANDOC_KEY_MEMBER);
}

/// get(target, name, receiver)
duk_ret_t TrapGet(duk_context* ctx) {
  if (!duk_is_string(ctx, 1) || duk_is_symbol(ctx, 1)) return 0;
  const ComPtr<IDispatch> dispatch = TrappedDispatch(ctx);
  const WideString name = GetWide(ctx, 1);
  DISPID member = DISPID_UNKNOWN;
  if (!FindMember(dispatch, name, member)) {
    if (name != OLESTR("toString") && name != OLESTR("valueOf")) return 0;
    // What the language asks for when it needs text or a number instead of the object: its default
    // property.
    PushMember(ctx, 0, DISPID_VALUE);
    return 1;
  }
  DISPPARAMS params = {};
  Variant result;
  ExceptionInfo exception;
  const HRESULT read =
      Invoke(dispatch, member, DISPATCH_PROPERTYGET, params, result.Receive(), exception);
  if (SUCCEEDED(read)) {
    PushVariant(ctx, result.Get());
  } else if (WantsCall(read)) {
    PushMember(ctx, 0, member);
  } else {
    throw ErrorOfCall(read, exception.Complete());
  }
  return 1;
}

/// set(target, name, value, receiver)
duk_ret_t TrapSet(duk_context* ctx) {
  const ComPtr<IDispatch> dispatch = TrappedDispatch(ctx);
  DISPID member = DISPID_UNKNOWN;
  if (duk_is_symbol(ctx, 1) || !FindMember(dispatch, GetWide(ctx, 1), member)) {
    throw ScriptError{DISP_E_UNKNOWNNAME, {}, false};
  }
  Variant value = ToVariant(ctx, 2);
  DISPID named = DISPID_PROPERTYPUT;
  DISPPARAMS params = {&value.Get(), &named, 1, 1};
  const bool isObject = value.Get().vt == VT_DISPATCH || value.Get().vt == VT_UNKNOWN;
  const WORD flags =
      isObject ? DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
  ExceptionInfo exception;
  const HRESULT set = Invoke(dispatch, member, flags, params, nullptr, exception);
  if (FAILED(set)) throw ErrorOfCall(set, exception.Complete());
  duk_push_true(ctx);
  return 1;
}

/// has(target, name)
duk_ret_t TrapHas(duk_context* ctx) {
  DISPID member = DISPID_UNKNOWN;
  const bool has = duk_is_string(ctx, 1) && !duk_is_symbol(ctx, 1) &&
                   FindMember(TrappedDispatch(ctx), GetWide(ctx, 1), member);
  duk_push_boolean(ctx, has);
  return 1;
}

/// deleteProperty(target, name): members stay.
duk_ret_t TrapDelete(duk_context* ctx) {
  duk_push_false(ctx);
  return 1;
}

/// ownKeys(target): an automation object does not tell its members to for-in.
duk_ret_t TrapOwnKeys(duk_context* ctx) {
  duk_push_array(ctx);
  return 1;
}

/// Runs when no value of the script stands for the reference any more.
duk_ret_t Finalize(duk_context* ctx) {
  Reference* reference = ReferenceOf(ctx, 0);
  if (reference == nullptr) return 0;
  // A value can come back to life while it is finalized, and be finalized again.
  duk_del_prop_literal(ctx, 0, VELANDOC_KEY_REFERENCE);
  Table(ctx).Release(reference);
  return 0;
}

void PushTarget(duk_context* ctx, IUnknown* object, IDispatch* dispatch) {
  Reference* reference = Table(ctx).Add(object, dispatch);
  duk_push_object(ctx);
  duk_push_pointer(ctx, reference);
  duk_put_prop_literal(ctx, -2, VELANDOC_KEY_REFERENCE);
  duk_push_c_function(ctx, Native<Finalize>, 2);
  duk_set_finalizer(ctx, -2);
}

}  // namespace

void InstallDispatchObjects(duk_context* ctx, ReferenceTable& references) {
  static constexpr duk_function_list_entry kTraps[] = {
      {"get", Native<TrapGet>, 3},         {"set", Native<TrapSet>, 4},
      {"has", Native<TrapHas>, 2},         {"deleteProperty", Native<TrapDelete>, 2},
      {"ownKeys", Native<TrapOwnKeys>, 1}, {nullptr, nullptr, 0},
  };
  duk_push_global_stash(ctx);
  duk_push_pointer(ctx, &references);
  duk_put_prop_string(ctx, -2, kStashTable);
  duk_push_object(ctx);
  duk_put_function_list(ctx, -1, kTraps);
  duk_put_prop_string(ctx, -2, kStashTraps);
  duk_pop(ctx);
}

void PushDispatch(duk_context* ctx, IDispatch* dispatch) {
  if (dispatch == nullptr) return duk_push_null(ctx);
  PushTarget(ctx, dispatch, dispatch);
  duk_push_global_stash(ctx);
  duk_get_prop_string(ctx, -1, kStashTraps);
  duk_remove(ctx, -2);
  duk_push_proxy(ctx, 0);
}

void PushOpaque(duk_context* ctx, IUnknown* object) {
  if (object == nullptr) return duk_push_null(ctx);
  PushTarget(ctx, object, nullptr);
}

const Reference* GetReference(duk_context* ctx, duk_idx_t index) { return ReferenceOf(ctx, index); }

}  // namespace velandoc
