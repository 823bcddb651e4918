#include "hosts/script/errors.h"

#include <cmath>
#include <exception>
#include <limits>
#include <new>
#include <string_view>

#include "hosts/script/script_text.h"
#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

/// The engine's kinds of error, by the names of their constructors.
struct ErrorKind {
  const char* name;
  duk_errcode_t code;
};
constexpr ErrorKind kErrorKinds[] = {
    {"Error", DUK_ERR_ERROR},
    {"EvalError", DUK_ERR_EVAL_ERROR},
    {"RangeError", DUK_ERR_RANGE_ERROR},
    {"ReferenceError", DUK_ERR_REFERENCE_ERROR},
    {"SyntaxError", DUK_ERR_SYNTAX_ERROR},
    {"TypeError", DUK_ERR_TYPE_ERROR},
    {"URIError", DUK_ERR_URI_ERROR},
};

/// Without file and line of this source: the error's place is the script's. The manual knows only
/// the macro over this function, which puts in the place of the call.
void PushBareError(duk_context* ctx, duk_errcode_t code) {
  duk_push_error_object_raw(ctx, code, nullptr, 0, "%s", "");
}

/// Defines a property of the object on top of the stack whose value lies above it; scripts may
/// change it, but do not meet it in for-in.
void DefineHidden(duk_context* ctx, const char* name) {
  duk_push_string(ctx, name);
  duk_insert(ctx, -2);
  duk_def_prop(ctx, -3,
               DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_SET_WRITABLE | DUK_DEFPROP_SET_CONFIGURABLE |
                   DUK_DEFPROP_CLEAR_ENUMERABLE | DUK_DEFPROP_FORCE);
}

/// 32 bits of a number as JScript keeps an error's.
duk_int_t ErrorNumber(double value) {
  if (!std::isfinite(value)) return 0;
  const double wrapped = std::fmod(std::trunc(value), 4294967296.0);
  return static_cast<duk_int_t>(static_cast<std::uint32_t>(static_cast<std::int64_t>(wrapped)));
}

/// Error(message), Error(number) and Error(number, message), with or without `new`. A first
/// argument that is a number is the error's number. No C++ object lives here, so conversions may
/// raise.
duk_ret_t ConstructError(duk_context* ctx) {
  const auto code = static_cast<duk_errcode_t>(duk_get_current_magic(ctx));
  const duk_idx_t count = duk_get_top(ctx);
  const bool hasNumber = count > 0 && duk_is_number(ctx, 0) && !duk_is_nan(ctx, 0);
  const duk_idx_t messageAt = hasNumber ? 1 : 0;
  const duk_int_t number = hasNumber ? ErrorNumber(duk_get_number(ctx, 0)) : 0;
  PushBareError(ctx, code);
  if (messageAt < count && !duk_is_undefined(ctx, messageAt)) {
    duk_to_string(ctx, messageAt);
    duk_dup(ctx, messageAt);
    DefineHidden(ctx, "message");
  }
  duk_push_int(ctx, number);
  DefineHidden(ctx, "number");
  return 1;
}

duk_ret_t GetDescription(duk_context* ctx) {
  duk_push_this(ctx);
  duk_get_prop_literal(ctx, -1, "message");
  return 1;
}

duk_ret_t SetDescription(duk_context* ctx) {
  duk_push_this(ctx);
  duk_dup(ctx, 0);
  duk_put_prop_literal(ctx, -2, "message");
  return 0;
}

/// The engine words a call of something that is not there in its own way, and has no numbers. Runs
/// for each new error and must not raise, so it looks at the message only where that is plain text
/// of the error itself.
duk_ret_t AdaptEngineError(duk_context* ctx) {
  if (duk_get_error_code(ctx, 0) == DUK_ERR_TYPE_ERROR && duk_has_prop_literal(ctx, 0, "message")) {
    duk_get_prop_literal(ctx, 0, "message");
    duk_size_t length = 0;
    const char* text = duk_get_lstring_default(ctx, -1, &length, "", 0);
    // As in "undefined not callable (property 'NoSuch' of [object Object])". Nothing but the
    // wording tells this error from the other TypeErrors, and the engine promises no wording; the
    // lane `scripts` fails with an engine that has another.
    if (std::string_view(text, length).starts_with("undefined not callable (property ")) {
      duk_dup(ctx, 0);
      duk_push_literal(ctx, "Object doesn't support this property or method");
      DefineHidden(ctx, "message");
      duk_push_int(ctx, kMemberNotSupported);
      DefineHidden(ctx, "number");
    }
  }
  duk_dup(ctx, 0);
  return 1;
}

void InstallErrorKind(duk_context* ctx, const ErrorKind& kind) {
  duk_get_global_string(ctx, kind.name);
  duk_get_prop_literal(ctx, -1, "prototype");
  duk_push_c_function(ctx, ConstructError, DUK_VARARGS);
  duk_set_magic(ctx, -1, kind.code);
  duk_push_string(ctx, kind.name);
  duk_push_literal(ctx, "name");
  duk_insert(ctx, -2);
  duk_def_prop(ctx, -3, DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_FORCE);
  duk_dup(ctx, -2);
  duk_push_literal(ctx, "prototype");
  duk_insert(ctx, -2);
  duk_def_prop(ctx, -3, DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_FORCE);
  duk_dup(ctx, -1);
  duk_push_literal(ctx, "constructor");
  duk_insert(ctx, -2);
  duk_def_prop(ctx, -4,
               DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_SET_WRITABLE | DUK_DEFPROP_SET_CONFIGURABLE |
                   DUK_DEFPROP_CLEAR_ENUMERABLE | DUK_DEFPROP_FORCE);
  duk_put_global_string(ctx, kind.name);
  duk_pop_2(ctx);
}

ScriptError LanguageError(HRESULT number, WideView message) {
  return {number, WideString(message), true};
}

}  // namespace

ScriptError TypeMismatch() { return LanguageError(kTypeMismatch, OLESTR("Type mismatch")); }

ScriptError CannotCreateObject() {
  return {kCannotCreateObject, OLESTR("Automation server can't create object"), false};
}

ScriptError MemberNotSupported() {
  return LanguageError(kMemberNotSupported,
                       OLESTR("Object doesn't support this property or method"));
}

ScriptError ErrorOfCall(HRESULT result, const EXCEPINFO& exception) {
  ScriptError error{result, {}, false};
  if (result != DISP_E_EXCEPTION) return error;
  // Objects may fill in a 16-bit code of their own instead of a result; scripts then see a plain
  // failure.
  error.number = FAILED(exception.scode) ? exception.scode : E_FAIL;
  if (exception.bstrDescription != nullptr) {
    error.message.assign(exception.bstrDescription, SysStringLen(exception.bstrDescription));
  }
  return error;
}

void PushError(duk_context* ctx, const ScriptError& error) {
  PushBareError(ctx, error.isTypeError ? DUK_ERR_TYPE_ERROR : DUK_ERR_ERROR);
  PushWide(ctx, error.message);
  DefineHidden(ctx, "message");
  duk_push_int(ctx, error.number);
  DefineHidden(ctx, "number");
}

void InstallErrors(duk_context* ctx) {
  for (const ErrorKind& kind : kErrorKinds) InstallErrorKind(ctx, kind);

  duk_get_global_literal(ctx, "Error");
  duk_get_prop_literal(ctx, -1, "prototype");
  duk_push_int(ctx, 0);
  DefineHidden(ctx, "number");
  duk_push_literal(ctx, "description");
  duk_push_c_function(ctx, GetDescription, 0);
  duk_push_c_function(ctx, SetDescription, 1);
  duk_def_prop(ctx, -4,
               DUK_DEFPROP_HAVE_GETTER | DUK_DEFPROP_HAVE_SETTER | DUK_DEFPROP_SET_CONFIGURABLE |
                   DUK_DEFPROP_CLEAR_ENUMERABLE | DUK_DEFPROP_FORCE);
  duk_pop_2(ctx);

  duk_get_global_literal(ctx, "Duktape");
  duk_push_c_function(ctx, AdaptEngineError, 1);
  duk_put_prop_literal(ctx, -2, "errCreate");
  duk_pop(ctx);
}

duk_ret_t CallNative(duk_context* ctx, NativeBody body) noexcept {
  try {
    return body(ctx);
  } catch (const ScriptThrown&) {
    return kNativeThrew;
  } catch (const ScriptError& error) {
    PushError(ctx, error);
  } catch (const _com_error& error) {
    PushError(ctx, {error.Error(), {}, false});
  } catch (const std::bad_alloc&) {
    PushError(ctx, {E_OUTOFMEMORY, {}, false});
  } catch (const std::exception& error) {
    PushError(ctx, {E_FAIL, WideFromUtf8(error.what()), false});
  }
  return kNativeThrew;
}

void CallScript(duk_context* ctx, duk_idx_t count) {
  if (duk_pcall(ctx, count) != DUK_EXEC_SUCCESS) throw ScriptThrown();
}

}  // namespace velandoc
