// One script from its first line to its exit code.
#pragma once

#include <duktape.h>

#include <memory>
#include <string>
#include <vector>

#include "hosts/script/reference_table.h"
#include "hosts/script/script_source.h"
#include "hosts/script/wscript_object.h"

namespace velandoc {

class ScriptEngine : private ScriptHost {
 public:
  /// COM must be up on this thread, and the engine be used on it alone.
  ScriptEngine(const ScriptSource& source, const std::vector<std::string>& arguments);
  ScriptEngine(const ScriptEngine&) = delete;
  ScriptEngine& operator=(const ScriptEngine&) = delete;

  /// Runs the script. 0 if it came to its end, 1 after an error that nothing caught, which is then
  /// told on the error stream as "FILE(LINE): runtime error: MESSAGE". WScript.Quit does not return
  /// here: it ends the process with its code, after the objects are released.
  int Run();

 private:
  struct HeapDestroyer {
    void operator()(duk_context* ctx) const { duk_destroy_heap(ctx); }
  };

  [[noreturn]] void Quit(int exitCode) override;
  static duk_ret_t NoteThrow(duk_context* ctx);
  void Install(const std::vector<std::string>& arguments);
  void TellError(bool isSyntax);

  const ScriptSource& m_source;
  ReferenceTable m_references;
  // Of the latest value thrown that is no Error, and so does not know it itself.
  int m_thrownLine = 0;
  std::unique_ptr<duk_context, HeapDestroyer> m_context;
};

}  // namespace velandoc
