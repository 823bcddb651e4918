#include "hosts/script/wscript_object.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "hosts/create_object.h"
#include "hosts/script/dispatch_object.h"
#include "hosts/script/errors.h"
#include "hosts/script/script_text.h"
#include "hosts/script/variant_value.h"
#include "hosts/text_encoding.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

constexpr char kStashHost[] = "host";
constexpr char kStashArguments[] = "arguments";

/// An object of COM's answers to its members' names in any case, and reads unknown ones as
/// undefined.
constexpr char kAnyCase[] = R"((function (target) {
  var names = {};
  Object.getOwnPropertyNames(target).forEach(function (name) {
    names[name.toLowerCase()] = name;
  });
  function own(key) {
    return typeof key === 'string' && names.hasOwnProperty(key.toLowerCase()) ?
        names[key.toLowerCase()] : key;
  }
  return new Proxy(target, {
    get: function (object, key) { return object[own(key)]; },
    has: function (object, key) { return own(key) in object; }
  });
}))";

ScriptHost& Host(duk_context* ctx) {
  duk_push_global_stash(ctx);
  duk_get_prop_string(ctx, -1, kStashHost);
  auto* host = static_cast<ScriptHost*>(duk_get_pointer(ctx, -1));
  duk_pop_2(ctx);
  return *host;
}

/// The text that Windows' script host shows for a value: that of the VARIANT which it is passed as.
/// So true is -1.
WideString ShownText(duk_context* ctx, duk_idx_t index) {
  switch (duk_get_type(ctx, index)) {
    case DUK_TYPE_UNDEFINED:
      return {};
    case DUK_TYPE_NULL:
      return OLESTR("null");
    case DUK_TYPE_BOOLEAN:
      return duk_get_boolean(ctx, index) ? OLESTR("-1") : OLESTR("0");
    case DUK_TYPE_STRING:
      if (!duk_is_symbol(ctx, index)) return GetWide(ctx, index);
      break;
    case DUK_TYPE_NUMBER:
      break;
    default:
      if (GetReference(ctx, index) != nullptr) break;
      duk_get_global_literal(ctx, "String");
      duk_dup(ctx, index);
      CallScript(ctx, 1);
      WideString text = GetWide(ctx, -1);
      duk_pop(ctx);
      return text;
  }
  Variant value = ToVariant(ctx, index);
  const HRESULT result = VariantChangeType(&value.Get(), &value.Get(), 0, VT_BSTR);
  if (FAILED(result)) throw ScriptError{result, {}, false};
  return WideString(value.Get().bstrVal, SysStringLen(value.Get().bstrVal));
}

/// All arguments with a blank between them.
WideString ShownArguments(duk_context* ctx) {
  WideString text;
  const duk_idx_t count = duk_get_top(ctx);
  for (duk_idx_t i = 0; i < count; ++i) {
    if (i > 0) text += OLESTR(' ');
    text += ShownText(ctx, i);
  }
  return text;
}

void WriteData(duk_context* ctx, const WideString& text) {
  // Nobody reads the output any more: there is nothing left to do for the script.
  if (!WriteOutput(Utf8FromWide(text))) Host(ctx).Quit(1);
}

duk_ret_t Echo(duk_context* ctx) {
  WriteData(ctx, ShownArguments(ctx) + OLESTR('\n'));
  return 0;
}

duk_ret_t OutputWrite(duk_context* ctx) {
  WriteData(ctx, ShownArguments(ctx));
  return 0;
}

duk_ret_t TalkWrite(duk_context* ctx) {
  WriteTalk(Utf8FromWide(ShownArguments(ctx)));
  return 0;
}

duk_ret_t TalkWriteLine(duk_context* ctx) {
  WriteTalk(Utf8FromWide(ShownArguments(ctx)) + "\n");
  return 0;
}

duk_ret_t Quit(duk_context* ctx) {
  Host(ctx).Quit(duk_get_int_default(ctx, 0, 0));
  return 0;
}

duk_ret_t Sleep(duk_context* ctx) {
  // A day is the most; longer texts of digits are typing errors.
  const double milliseconds = std::clamp(duk_get_number_default(ctx, 0, 0), 0.0, 86400000.0);
  std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(milliseconds));
  return 0;
}

HRESULT PushNewObject(duk_context* ctx, const WideString& progId) {
  ComPtr<IDispatch> object;
  const HRESULT result = CreateObject(progId, IID_IDispatch, object.ReceiveVoid());
  if (SUCCEEDED(result)) PushDispatch(ctx, object.Get());
  return result;
}

duk_ret_t CreateObjectOfHost(duk_context* ctx) {
  const HRESULT result = PushNewObject(ctx, GetWide(ctx, 0));
  if (FAILED(result)) throw ScriptError{result, {}, false};
  return 1;
}

/// new ActiveXObject(progId): whatever goes wrong has one number and text.
duk_ret_t ConstructActiveXObject(duk_context* ctx) {
  if (!duk_is_constructor_call(ctx) || duk_get_top(ctx) == 0) {
    throw ScriptError{E_NOTIMPL, {}, false};
  }
  if (FAILED(PushNewObject(ctx, GetWide(ctx, 0)))) throw CannotCreateObject();
  return 1;
}

duk_ret_t GetArgument(duk_context* ctx) {
  const double index = duk_get_number_default(ctx, 0, -1);
  duk_push_global_stash(ctx);
  duk_get_prop_string(ctx, -1, kStashArguments);
  const auto count = static_cast<double>(duk_get_length(ctx, -1));
  if (!(index >= 0 && index < count)) throw ScriptError{E_INVALIDARG, {}, false};
  duk_get_prop_index(ctx, -1, static_cast<duk_uarridx_t>(index));
  return 1;
}

duk_ret_t CountArguments(duk_context* ctx) {
  duk_push_global_stash(ctx);
  duk_get_prop_string(ctx, -1, kStashArguments);
  duk_push_number(ctx, static_cast<double>(duk_get_length(ctx, -1)));
  return 1;
}

/// Puts a Proxy that knows names in any case in the place of the object on top of the stack.
void MakeAnyCase(duk_context* ctx) {
  duk_eval_string(ctx, kAnyCase);
  duk_insert(ctx, -2);
  duk_call(ctx, 1);
}

/// The collection is callable, and then gives one of its items.
void PushArguments(duk_context* ctx, const std::vector<std::string>& arguments) {
  duk_push_global_stash(ctx);
  duk_push_array(ctx);
  duk_uarridx_t index = 0;
  for (const std::string& argument : arguments) {
    PushWide(ctx, WideFromUtf8(argument));
    duk_put_prop_index(ctx, -2, index++);
  }
  duk_put_prop_string(ctx, -2, kStashArguments);
  duk_pop(ctx);

  duk_push_c_function(ctx, Native<GetArgument>, 1);
  duk_push_c_function(ctx, Native<GetArgument>, 1);
  duk_put_prop_literal(ctx, -2, "Item");
  duk_push_c_function(ctx, Native<CountArguments>, 0);
  duk_put_prop_literal(ctx, -2, "Count");
  duk_push_literal(ctx, "length");
  duk_push_uint(ctx, index);
  duk_def_prop(ctx, -3, DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_FORCE);
  MakeAnyCase(ctx);
}

void PutText(duk_context* ctx, const char* name, const std::string& utf8) {
  PushWide(ctx, WideFromUtf8(utf8));
  duk_put_prop_string(ctx, -2, name);
}

}  // namespace

void InstallWScript(duk_context* ctx, ScriptHost& host, const ScriptSource& source,
                    const std::vector<std::string>& arguments) {
  static constexpr duk_function_list_entry kMethods[] = {
      {"Echo", Native<Echo>, DUK_VARARGS},
      {"Quit", Native<Quit>, 1},
      {"Sleep", Native<Sleep>, 1},
      {"CreateObject", Native<CreateObjectOfHost>, 1},
      {nullptr, nullptr, 0},
  };
  static constexpr duk_function_list_entry kOutputMethods[] = {
      {"Write", Native<OutputWrite>, DUK_VARARGS},
      {"WriteLine", Native<Echo>, DUK_VARARGS},
      {nullptr, nullptr, 0},
  };
  static constexpr duk_function_list_entry kTalkMethods[] = {
      {"Write", Native<TalkWrite>, DUK_VARARGS},
      {"WriteLine", Native<TalkWriteLine>, DUK_VARARGS},
      {nullptr, nullptr, 0},
  };
  duk_push_global_stash(ctx);
  duk_push_pointer(ctx, &host);
  duk_put_prop_string(ctx, -2, kStashHost);
  duk_pop(ctx);

  duk_push_object(ctx);
  duk_put_function_list(ctx, -1, kMethods);
  PutText(ctx, "Name", "velandoc-script");
  PutText(ctx, "ScriptName", source.name);
  PutText(ctx, "ScriptFullName", source.fullPath);
  PushArguments(ctx, arguments);
  duk_put_prop_literal(ctx, -2, "Arguments");
  for (const auto& [name, methods] :
       {std::pair{"StdOut", kOutputMethods}, {"StdErr", kTalkMethods}}) {
    duk_push_object(ctx);
    duk_put_function_list(ctx, -1, methods);
    MakeAnyCase(ctx);
    duk_put_prop_string(ctx, -2, name);
  }
  MakeAnyCase(ctx);
  duk_put_global_literal(ctx, "WScript");

  duk_push_c_function(ctx, Native<ConstructActiveXObject>, DUK_VARARGS);
  duk_put_global_literal(ctx, "ActiveXObject");
}

}  // namespace velandoc
