// WScript, as far as it makes sense without a window: Echo, Quit, Sleep, CreateObject, Arguments,
// StdOut, StdErr and the names; and ActiveXObject, which creates the same objects.
#pragma once

#include <duktape.h>

#include <string>
#include <vector>

#include "hosts/script/script_source.h"

namespace velandoc {

/// What WScript needs of the program.
class ScriptHost {
 public:
  virtual ~ScriptHost() = default;
  /// Ends the script at once, past its catch and finally blocks.
  [[noreturn]] virtual void Quit(int exitCode) = 0;
};

/// `host` must outlive the engine.
void InstallWScript(duk_context* ctx, ScriptHost& host, const ScriptSource& source,
                    const std::vector<std::string>& arguments);

}  // namespace velandoc
