#include "tests/support/script_runner.h"

#include <duktape.h>

#include <stdexcept>

namespace velandoc::testing {

struct ScriptRunner::Engine {
  Engine() : context(duk_create_heap_default()) {
    if (context == nullptr) throw std::runtime_error("no engine");
  }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;
  ~Engine() { duk_destroy_heap(context); }

  duk_context* context;
};

ScriptRunner::ScriptRunner() : m_engine(std::make_unique<Engine>()) {}
ScriptRunner::~ScriptRunner() = default;

void ScriptRunner::Run(const std::string& program) { Evaluate(program); }

std::string ScriptRunner::Evaluate(const std::string& expression) {
  duk_context* const context = m_engine->context;
  const bool failed = duk_peval_lstring(context, expression.data(), expression.size()) != 0;
  const std::string text = duk_safe_to_string(context, -1);
  duk_pop(context);
  if (failed) throw std::runtime_error(text);
  return text;
}

}  // namespace velandoc::testing
