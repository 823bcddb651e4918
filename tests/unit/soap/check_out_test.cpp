#include "soap/check_out.h"

#include <gmock/gmock.h>

#include "platform/code_page.h"
#include "tests/support/fault_code_page.h"
#include "tests/unit/soap/service_fixture.h"

namespace velandoc {
namespace {

using testing::Answer;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr LPCWSTR kPage = OLESTR("https://h.test:8443/sites/a/D/b c.xlsx");

std::string Web() {
  return std::string("<WebUrlFromPageUrlResponse xmlns=\"") + testing::kService +
         "\"><WebUrlFromPageUrlResult>https://h.test/sites/a</WebUrlFromPageUrlResult>"
         "</WebUrlFromPageUrlResponse>";
}

std::string Verdict(const std::string& method, const std::string& text) {
  return "<" + method + "Response xmlns=\"" + testing::kService + "\"><" + method + "Result>" +
         text + "</" + method + "Result></" + method + "Response>";
}

struct Operation {
  const char* method;
  std::string (*run)();
  const char* yes;
  const char* no;
  const char* failure;
  const char* parameters;
};

std::string CheckOut() { return CheckOutFile(kPage) ? "true" : "false"; }
std::string CheckIn() { return CheckInFile(kPage, OLESTR("c & d"), 1) ? "true" : "false"; }
std::string Undo() { return std::to_string(UndoCheckOut(kPage)); }

const Operation kOperations[] = {
    {"CheckOutFile", CheckOut, "true", "false", "false", " checkOutToLocal* ( 'true' )"},
    {"CheckInFile", CheckIn, "true", "false", "false",
     " comment* ( 'c & d' ) checkinType* ( '1' )"},
    {"UndoCheckOut", Undo, "0", "1", "-1", ""},
};

class CheckOutCalls : public testing::ServiceTest {
 protected:
  std::string Run(const Operation& operation, Answer answer) {
    m_platform.answers = {Xml(Envelope(Web())), std::move(answer)};
    const std::string outcome = operation.run();
    EXPECT_EQ(m_platform.OpenHandles(), 0);
    return outcome;
  }
  std::string Told(const Operation& operation, const std::string& text) {
    return Run(operation, Xml(Envelope(Verdict(operation.method, text))));
  }
  // "ok" for what a server's true gives.
  static std::function<std::string()> Judged(const Operation& operation) {
    return [&operation] {
      const std::string outcome = operation.run();
      return outcome == operation.yes ? "ok" : outcome;
    };
  }
};

TEST_F(CheckOutCalls, EachFindsTheWebAndThenAsksItsListsService) {
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.method);
    m_platform.calls.clear();
    m_platform.bodies.clear();
    m_platform.headerBlocks.clear();
    EXPECT_EQ(Told(operation, "true"), operation.yes);
    EXPECT_THAT(Objects(), ElementsAre("h.test:443/_vti_bin/webs.asmx",
                                       "h.test:443/sites/a/_vti_bin/lists.asmx"));
    EXPECT_EQ(Action(1),
              std::string("http://schemas.microsoft.com/sharepoint/soap/") + operation.method);
    EXPECT_EQ(Method(0),
              "WebUrlFromPageUrl* ( pageUrl* ( 'https://h.test:8443/sites/a/D/b c.xlsx' ) )");
    EXPECT_EQ(Method(1), std::string(operation.method) +
                             "* ( pageUrl* ( 'https://h.test:8443/sites/a/D/b c.xlsx' )" +
                             operation.parameters + " )");
    EXPECT_EQ(m_platform.CallsOf("InternetOpenW").size(), 2U) << "a connection for each call";
  }
}

TEST_F(CheckOutCalls, ANullCommentGoesOutEmpty) {
  m_platform.answers = {Xml(Envelope(Web())), Xml(Envelope(Verdict("CheckInFile", "true")))};
  EXPECT_TRUE(CheckInFile(kPage, nullptr, 0));
  EXPECT_EQ(Method(1),
            "CheckInFile* ( pageUrl* ( 'https://h.test:8443/sites/a/D/b c.xlsx' ) comment* "
            "checkinType* ( '0' ) )");
}

TEST_F(CheckOutCalls, ACheckInTypeGoesOutAsItIsAndTheServerDecides) {
  const struct {
    std::int32_t type;
    const char* text;
  } cases[] = {{7, "'7'"},
               {-1, "'-1'"},
               {2147483647, "'2147483647'"},
               {2, "'2'"},
               {-2147483647 - 1, "'-2147483648'"}};
  for (const auto& test : cases) {
    m_platform.bodies.clear();
    m_platform.answers = {Xml(Envelope(Web())), Xml(Envelope(Verdict("CheckInFile", "false")))};
    EXPECT_FALSE(CheckInFile(kPage, OLESTR(""), test.type));
    EXPECT_NE(Method(1).find(std::string("checkinType* ( ") + test.text + " )"), std::string::npos)
        << Method(1);
  }
}

TEST_F(CheckOutCalls, TheVerdictIsABooleanOfOleAutomation) {
  const struct {
    const char* text;
    int verdict;  // 1 yes, 0 no, -1 not to be read
    const char* why;
  } cases[] = {
      {"true", 1, "as servers write it"},
      {"false", 0, "as servers write it"},
      {"TRUE", 1, "in capitals"},
      {"False", 0, "in any case"},
      {"1", 1, "the other form of XML's boolean"},
      {"0", 0, "the other form of XML's boolean"},
      {"-1", 1, "whatever number is not 0"},
      {"12.5", 1, "whatever number is not 0"},
      {" true ", 1, "blanks round it are the DOM's to drop"},
      {"&#160;true", -1, "and no other kind of blank"},
      {"", -1, "no text"},
      {"yes", -1, "no word of OLE Automation"},
      {"true false", -1, "two words"},
      {"<x>true</x>", 1, "the text below counts"},
      {"t<!-- c -->rue", 1, "a comment is none of it"},
  };
  for (const Operation& operation : kOperations) {
    for (const auto& test : cases) {
      const char* const expected = test.verdict == 1   ? operation.yes
                                   : test.verdict == 0 ? operation.no
                                                       : operation.failure;
      EXPECT_EQ(Told(operation, test.text), expected)
          << operation.method << ": '" << test.text << "', " << test.why;
    }
  }
}

TEST_F(CheckOutCalls, UndoTellsARefusalFromAFailure) {
  EXPECT_EQ(Told(kOperations[2], "true"), "0") << "success is 0";
  EXPECT_EQ(Told(kOperations[2], "false"), "1");
  m_platform.answers = {Answer{.error = 12029}};
  EXPECT_EQ(UndoCheckOut(kPage), -1) << "nobody listens";
}

TEST_F(CheckOutCalls, EveryKindOfEnvelopeIsRead) {
  for (const Operation& operation : kOperations) {
    for (const std::string& answer : Envelopes(Verdict(operation.method, "true"))) {
      EXPECT_EQ(Run(operation, Xml(answer)), operation.yes) << answer;
    }
  }
}

TEST_F(CheckOutCalls, AnAnswerWithoutTheResultIsAFailure) {
  for (const Operation& operation : kOperations) {
    const std::string method = operation.method;
    for (const std::string& content :
         {"<" + method + "Result>true</" + method + "Result>",
          "<" + method + "Result xmlns='urn:x'>true</" + method + "Result>",
          "<" + method + "Response xmlns='" + testing::kService + "'>true</" + method + "Response>",
          Verdict("Other", "true")}) {
      EXPECT_EQ(Run(operation, Xml(Envelope(content))), operation.failure) << content;
    }
  }
}

TEST_F(CheckOutCalls, AFailedCallIsAFailure) {
  for (const Operation& operation : kOperations) {
    for (const Refusal& refusal : Refusals()) {
      SCOPED_TRACE(std::string(operation.method) + ": " + refusal.why);
      EXPECT_EQ(Run(operation, refusal.answer), operation.failure);
      m_platform.answers = {refusal.answer};
      m_platform.bodies.clear();
      EXPECT_EQ(operation.run(), operation.failure) << "in place of the web's URL";
      EXPECT_EQ(m_platform.bodies.size(), 1U) << "and there it ends";
      EXPECT_EQ(m_platform.OpenHandles(), 0);
    }
  }
}

TEST_F(CheckOutCalls, AWebUrlWithoutAHostEndsThere) {
  for (const Operation& operation : kOperations) {
    m_platform.bodies.clear();
    m_platform.answers = {Xml(
        Envelope(std::string("<WebUrlFromPageUrlResponse xmlns='") + testing::kService + "'/>"))};
    EXPECT_EQ(operation.run(), operation.failure) << operation.method;
    EXPECT_EQ(m_platform.bodies.size(), 1U);
    EXPECT_EQ(m_platform.OpenHandles(), 0);
  }
}

TEST_F(CheckOutCalls, AUrlWithoutAHostIsNeverSent) {
  EXPECT_FALSE(CheckOutFile(nullptr));
  EXPECT_FALSE(CheckInFile(OLESTR(""), nullptr, 0));
  EXPECT_EQ(UndoCheckOut(OLESTR("\\\\h\\a")), -1);
  EXPECT_THAT(m_platform.bodies, IsEmpty());
  EXPECT_EQ(m_platform.OpenHandles(), 0);
}

// Two calls one after the other: what raises and what fails comes twice.
TEST_F(CheckOutCalls, AFailureOfTheDomRaisesBeforeAnAnswerAndIsAFailureBehindIt) {
  const std::string web = "6 raised E_POINTER, 6 raised, 2 F, 1 raised, 1 F, 1 raised, 2 F";
  const std::string own[] = {
      "6 raised E_POINTER, 9 raised, 2 F, 1 raised, 1 F, 1 raised, 2 F",
      "6 raised E_POINTER, 12 raised, 2 F, 1 raised, 1 F, 1 raised, 2 F",
      "6 raised E_POINTER, 6 raised, 2 F, 1 raised, 1 F, 1 raised, 2 F",
  };
  for (std::size_t i = 0; i < std::size(own); ++i) {
    std::string expected = web + ", " + own[i];
    for (std::size_t at = 0; (at = expected.find('F', at)) != std::string::npos;) {
      expected.replace(at, 1, kOperations[i].failure);
    }
    EXPECT_EQ(
        DomFaults({Xml(Envelope(Web())), Xml(Envelope(Verdict(kOperations[i].method, "true")))},
                  Judged(kOperations[i])),
        expected)
        << kOperations[i].method;
  }
}

TEST_F(CheckOutCalls, AFailureOfTheNetworkIsAFailure) {
  for (const Operation& operation : kOperations) {
    const std::string failure = operation.failure;
    EXPECT_EQ(
        NetworkFaults({Xml(Envelope(Web())), Xml(Envelope(Verdict(operation.method, "true")))},
                      Judged(operation)),
        "4 " + failure + ", 2 ok, 7 " + failure + ", 2 ok, 3 " + failure)
        << operation.method;
  }
}

TEST_F(CheckOutCalls, AShortageOfMemoryRaises) {
  testing::ExhaustedCodePage exhausted;
  PortScope<CodePage> scope(exhausted);
  for (const Operation& operation : kOperations) {
    EXPECT_EQ(testing::OutcomeOf(operation.run), "raised E_OUTOFMEMORY") << operation.method;
    EXPECT_EQ(m_platform.OpenHandles(), 0);
  }
}

}  // namespace
}  // namespace velandoc
