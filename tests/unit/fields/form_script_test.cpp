// The page's script in an engine of its own, with a document that the tests make up.
#include <gtest/gtest.h>

#include "fields/form_generator.h"
#include "tests/support/fault_dom.h"
#include "tests/support/script_runner.h"

namespace velandoc {
namespace {

class FormScript : public ::testing::Test {
 protected:
  FormScript() {
    m_runner.Run(
        "var alerts = [], focused = 0, elements = {};\n"
        "function alert(text) { alerts.push(String(text)); }\n"
        "function focus() { focused++; }\n"
        "function element(value, checked) {\n"
        "  return {value: value, checked: checked, focus: focus};\n"
        "}\n"
        "var document = {getElementsByName: function (name) { return elements[name] || []; }};\n");
    m_runner.Run(LoadFormScript());
  }
  std::string Value(const std::string& elements) {
    m_runner.Run("elements = {A: [" + elements + "]};");
    return m_runner.Evaluate("GetFieldValue('A', -1)");
  }

  testing::ComScope m_com;
  testing::ScriptRunner m_runner;
};

TEST_F(FormScript, OneElementGivesItsValueTickedOrNot) {
  EXPECT_EQ(Value("element('Plan')"), "Plan");
  EXPECT_EQ(Value("element('')"), "");
  EXPECT_EQ(Value("element('One', false)"), "One") << "a group of one box";
  EXPECT_EQ(Value("element('One', true)"), "One");
  EXPECT_EQ(Value("element('a;#b')"), "a;#b");
}

TEST_F(FormScript, OfSeveralTheTickedOnesAreJoinedInOrder) {
  EXPECT_EQ(Value("element('A', false), element('B', false)"), "");
  EXPECT_EQ(Value("element('A', true), element('B', false)"), "A");
  EXPECT_EQ(Value("element('A', false), element('B', true)"), "B");
  EXPECT_EQ(Value("element('B', true), element('A', true)"), "B;#A");
  EXPECT_EQ(Value("element('A', true), element('B', true), element('A', true)"), "A;#B;#A");
  EXPECT_EQ(Value("element('', true), element('', true)"), ";#");
}

TEST_F(FormScript, ANameWithoutElementsIsEmpty) {
  EXPECT_EQ(Value(""), "");
  EXPECT_EQ(m_runner.Evaluate("GetFieldValue('none', 0)"), "");
  EXPECT_EQ(m_runner.Evaluate("typeof GetFieldValue('none')"), "string");
}

TEST_F(FormScript, RequiredPlaysNoPart) {
  m_runner.Run("elements = {A: [element('x')]};");
  for (const char* required : {"-1", "0", "undefined", "'text'"}) {
    EXPECT_EQ(m_runner.Evaluate("GetFieldValue('A', " + std::string(required) + ")"), "x");
  }
}

TEST_F(FormScript, AThousandBoxesAreRead) {
  m_runner.Run(
      "elements = {A: []};\n"
      "for (var i = 0; i < 1000; i++) elements.A.push(element('c' + i, i % 500 == 499));\n");
  EXPECT_EQ(m_runner.Evaluate("GetFieldValue('A', 0)"), "c499;#c999");
}

TEST_F(FormScript, AMissingValueIsToldAndTheFocusStaysWhereItIs) {
  m_runner.Run("elements = {A: [element('')]};");
  EXPECT_EQ(m_runner.Evaluate("AlertRequired('A', 'Title of it')"), "undefined");
  EXPECT_EQ(m_runner.Evaluate("alerts.join('|')"), "Required property: Title of it");
  EXPECT_EQ(m_runner.Evaluate("focused"), "0");
}

TEST_F(FormScript, WithOneArgumentTheAlertEndsWithUndefined) {
  EXPECT_EQ(m_runner.Evaluate("AlertRequired('Title of it')"), "undefined");
  EXPECT_EQ(m_runner.Evaluate("alerts.join('|')"), "Required property: undefined");
}

TEST_F(FormScript, TheUnusedFunctionAnswers) {
  EXPECT_EQ(m_runner.Evaluate("NoArguments()"), "Argumentum");
  EXPECT_EQ(m_runner.Evaluate("alerts.length"), "0");
}

}  // namespace
}  // namespace velandoc
