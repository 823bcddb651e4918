// Runs JavaScript in an engine that has no page: duktape on Linux, the system's JScript on Windows.
#pragma once

#include <memory>
#include <string>

#ifdef _WIN32
#include "platform/owners.h"
#endif

namespace velandoc::testing {

class ScriptRunner {
 public:
  ScriptRunner();
  ScriptRunner(const ScriptRunner&) = delete;
  ScriptRunner& operator=(const ScriptRunner&) = delete;
  ~ScriptRunner();

  /// Runs `program` at the top level, in ASCII. Raises std::runtime_error if it does not compile or
  /// throws.
  void Run(const std::string& program);
  /// The value of an expression as text. Raises as Run does.
  std::string Evaluate(const std::string& expression);
#ifdef _WIN32
  /// The script object that a page's document would hand out.
  ComPtr<IDispatch> Script();
#endif

 private:
  struct Engine;
  std::unique_ptr<Engine> m_engine;
};

}  // namespace velandoc::testing
