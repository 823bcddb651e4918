// Errors as JScript gives them: an Error object with a signed 32-bit `number` and equal `message`
// and `description`.
//
// The script engine is C and raises its errors by longjmp, past every destructor. So the two kinds
// of code are kept apart: a native function's body is C++ and throws C++ exceptions, and calls of
// the engine only what cannot raise; Native<Body> turns the exception into the engine's error where
// nothing is left to destroy.
#pragma once

#include <duktape.h>

#include "platform/com.h"
#include "platform/text.h"

namespace velandoc {

/// What a script catches. Without a text of its own an error has an empty message, as in JScript.
struct ScriptError {
  HRESULT number = E_FAIL;
  WideString message;
  bool isTypeError = false;  // a TypeError; else a plain Error
};

/// The error lies on top of the engine's stack already.
struct ScriptThrown {};

/// Numbers of the language's own errors, and their texts.
inline constexpr HRESULT kTypeMismatch = static_cast<HRESULT>(0x800A000DU);
inline constexpr HRESULT kCannotCreateObject = static_cast<HRESULT>(0x800A01ADU);
inline constexpr HRESULT kMemberNotSupported = static_cast<HRESULT>(0x800A01B6U);
ScriptError TypeMismatch();
ScriptError CannotCreateObject();
ScriptError MemberNotSupported();

/// The error that stands for a failing call; `exception` says more where the result is
/// DISP_E_EXCEPTION. The texts in `exception` stay the caller's.
ScriptError ErrorOfCall(HRESULT result, const EXCEPINFO& exception);

/// Pushes a new Error object.
void PushError(duk_context* ctx, const ScriptError& error);

/// Gives scripts `new Error(number, message)`, and `description` and `number` on every error.
void InstallErrors(duk_context* ctx);

using NativeBody = duk_ret_t (*)(duk_context* ctx);
inline constexpr duk_ret_t kNativeThrew = -1000;
/// What `body` returns; or kNativeThrew, with the error on top of the stack.
duk_ret_t CallNative(duk_context* ctx, NativeBody body) noexcept;

/// A native function for the engine, out of a body that may throw ScriptError, ScriptThrown,
/// _com_error and what the standard library throws.
template <NativeBody Body>
duk_ret_t Native(duk_context* ctx) {
  const duk_ret_t result = CallNative(ctx, Body);
  return result == kNativeThrew ? duk_throw(ctx) : result;
}

/// Calls the function that lies below its `count` arguments; its result takes their place. What it
/// raises comes out as ScriptThrown.
void CallScript(duk_context* ctx, duk_idx_t count);

}  // namespace velandoc
