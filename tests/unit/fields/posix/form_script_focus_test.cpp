// What needs an engine with property getters.
#include <gtest/gtest.h>

#include "fields/form_generator.h"
#include "tests/support/script_runner.h"

namespace velandoc {
namespace {

TEST(FormScriptFocus, IsReadOnceOfTheFirstElementAndOnlyIfThereIsOne) {
  testing::ScriptRunner runner;
  runner.Run(LoadFormScript());
  runner.Run(
      "var order = [];\n"
      "function alert() { order.push('alert'); }\n"
      "function element(name) {\n"
      "  return {get focus() { order.push(name); return function () { order.push('called'); }; "
      "}};\n"
      "}\n"
      "var elements = {A: [element('first'), element('second')]};\n"
      "var document = {getElementsByName: function (name) { return elements[name] || []; }};\n");
  runner.Evaluate("AlertRequired('none', 'x')");
  EXPECT_EQ(runner.Evaluate("order.join(' ')"), "alert");
  runner.Evaluate("AlertRequired('A', 'x')");
  EXPECT_EQ(runner.Evaluate("order.join(' ')"), "alert alert first");
}

}  // namespace
}  // namespace velandoc
