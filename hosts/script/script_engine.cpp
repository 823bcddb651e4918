#include "hosts/script/script_engine.h"

#include <cstdlib>

#include "hosts/script/dispatch_object.h"
#include "hosts/script/errors.h"
#include "hosts/script/script_text.h"
#include "hosts/script/variant_value.h"
#include "hosts/text_encoding.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

constexpr char kStashDescribe[] = "describe";

/// Looks at a thrown value where it can do no harm: whatever it raises is caught.
constexpr char kDescribe[] = R"((function () {
  var ErrorObject = Error, Text = String;
  return function (thrown) {
    if (!(thrown instanceof ErrorObject)) return { message: Text(thrown), number: 0, line: 0 };
    return { message: Text(thrown.message), number: thrown.number | 0, line: thrown.lineNumber | 0 };
  };
})())";

[[noreturn]] void EndProcess(void*, const char* message) {
  WriteTalk(std::string("velandoc-script: ") + (message != nullptr ? message : "failed") + "\n");
  std::_Exit(1);
}

// Without memory there is no way on, so the engine never meets the end of it.
void* Resized(void*, void* memory, duk_size_t size) {
  if (size == 0) {
    std::free(memory);
    return nullptr;
  }
  void* resized = std::realloc(memory, size);
  if (resized == nullptr) EndProcess(nullptr, "out of memory");
  return resized;
}
void* Allocated(void* engine, duk_size_t size) { return Resized(engine, nullptr, size); }
void Freed(void*, void* memory) { std::free(memory); }

ScriptEngine* EngineOf(duk_context* ctx) {
  duk_memory_functions functions = {};
  duk_get_memory_functions(ctx, &functions);
  return static_cast<ScriptEngine*>(functions.udata);
}

/// Words for results that come without any: the script sees an empty message then, its user should
/// not.
struct ResultWords {
  HRESULT result;
  const char* words;
};
constexpr ResultWords kResultWords[] = {
    {E_NOTIMPL, "not implemented"},
    {E_NOINTERFACE, "the object does not support this interface"},
    {E_POINTER, "a place for the result is missing"},
    {E_ABORT, "the operation was aborted"},
    {E_FAIL, "the operation failed"},
    {E_ACCESSDENIED, "permission denied"},
    {E_OUTOFMEMORY, "out of memory"},
    {E_INVALIDARG, "an argument is invalid"},
    {CO_E_CLASSSTRING, "no class of this name is known"},
    {REGDB_E_CLASSNOTREG, "the class is not registered, or its library is missing"},
    {DISP_E_MEMBERNOTFOUND, "the object's member cannot be used like this"},
    {DISP_E_TYPEMISMATCH, "an argument has the wrong type"},
    {DISP_E_UNKNOWNNAME, "the object has no such member"},
    {DISP_E_BADVARTYPE, "the value has a type that scripts cannot use"},
    {DISP_E_OVERFLOW, "a number is too large for its place"},
    {DISP_E_BADPARAMCOUNT, "wrong number of arguments"},
    {DISP_E_PARAMNOTOPTIONAL, "an argument is missing"},
};

std::string WordsFor(HRESULT number) {
  for (const ResultWords& known : kResultWords) {
    if (known.result == number) return known.words;
  }
  return "failed";
}

std::string HexText(HRESULT number) {
  char text[16] = {};
  std::snprintf(text, sizeof text, " (0x%08X)", static_cast<unsigned>(number));
  return text;
}

/// A property of the description on top of the stack.
std::string Described(duk_context* ctx, const char* name) {
  duk_get_prop_string(ctx, -1, name);
  std::string text = Utf8FromWide(GetWide(ctx, -1));
  duk_pop(ctx);
  return text;
}
int DescribedNumber(duk_context* ctx, const char* name) {
  duk_get_prop_string(ctx, -1, name);
  const int number = duk_get_int(ctx, -1);
  duk_pop(ctx);
  return number;
}

}  // namespace

ScriptEngine::ScriptEngine(const ScriptSource& source, const std::vector<std::string>& arguments)
    : m_source(source), m_context(duk_create_heap(Allocated, Resized, Freed, this, EndProcess)) {
  if (m_context == nullptr) EndProcess(nullptr, "the script engine does not start");
  Install(arguments);
}

void ScriptEngine::Install(const std::vector<std::string>& arguments) {
  duk_context* ctx = m_context.get();
  duk_push_global_stash(ctx);
  duk_eval_string(ctx, kDescribe);
  duk_put_prop_string(ctx, -2, kStashDescribe);
  duk_pop(ctx);
  InstallErrors(ctx);
  InstallDispatchObjects(ctx, m_references);
  InstallVariantValues(ctx);
  InstallWScript(ctx, *this, m_source, arguments);
  // The engine's own object is no part of the language, and its hooks are ours.
  duk_get_global_literal(ctx, "Duktape");
  duk_push_c_function(ctx, NoteThrow, 1);
  duk_put_prop_literal(ctx, -2, "errThrow");
  duk_pop(ctx);
  duk_push_global_object(ctx);
  duk_del_prop_literal(ctx, -1, "Duktape");
  duk_pop(ctx);
}

int ScriptEngine::Run() {
  duk_context* ctx = m_context.get();
  duk_push_lstring(ctx, m_source.text.data(), m_source.text.size());
  duk_push_lstring(ctx, m_source.path.data(), m_source.path.size());
  if (duk_pcompile(ctx, 0) != DUK_EXEC_SUCCESS) {
    TellError(/*isSyntax=*/true);
    return 1;
  }
  if (duk_pcall(ctx, 0) != DUK_EXEC_SUCCESS) {
    TellError(/*isSyntax=*/false);
    return 1;
  }
  return 0;
}

void ScriptEngine::TellError(bool isSyntax) {
  duk_context* ctx = m_context.get();
  duk_push_global_stash(ctx);
  duk_get_prop_string(ctx, -1, kStashDescribe);
  duk_remove(ctx, -2);
  duk_dup(ctx, -2);
  std::string message = "an error that cannot be shown";
  int number = 0;
  int line = m_thrownLine;
  if (duk_pcall(ctx, 1) == DUK_EXEC_SUCCESS) {
    message = Described(ctx, "message");
    number = DescribedNumber(ctx, "number");
    if (const int own = DescribedNumber(ctx, "line")) line = own;
  }
  duk_pop_2(ctx);
  if (message.empty() && number != 0) message = WordsFor(number);
  WriteTalk(m_source.path + "(" + std::to_string(line) +
            "): " + (isSyntax ? "syntax error: " : "runtime error: ") + message +
            (FAILED(number) ? HexText(number) : "") + "\n");
}

/// Runs for each value thrown; keeps the place for those that do not know it.
duk_ret_t ScriptEngine::NoteThrow(duk_context* ctx) {
  if (!duk_is_error(ctx, 0)) {
    // Below this function the innermost that was compiled from a file. The manual keeps the right
    // to change what an entry tells; without "lineNumber" the error comes with line 0.
    for (duk_int_t level = -2;; --level) {
      duk_inspect_callstack_entry(ctx, level);
      if (!duk_is_object(ctx, -1)) break;
      duk_get_prop_literal(ctx, -1, "lineNumber");
      const int line = duk_get_int(ctx, -1);
      duk_pop_2(ctx);
      if (line == 0) continue;
      EngineOf(ctx)->m_thrownLine = line;
      break;
    }
  }
  duk_dup(ctx, 0);
  return 1;
}

void ScriptEngine::Quit(int exitCode) {
  // The engine stands in the middle of a call and is not destroyed; its values end with the
  // process, their objects now.
  m_references.ReleaseAll();
  const bool written = FlushOutput();
  std::exit(written || exitCode != 0 ? exitCode : 1);
}

}  // namespace velandoc
