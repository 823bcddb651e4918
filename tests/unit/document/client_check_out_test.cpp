// Who holds the document, since when, and the operations that change it.
#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <optional>

#include "tests/unit/document/client_fixture.h"

namespace velandoc {
namespace {

using testing::Answer;
using testing::DocumentLines;
using testing::DocumentPairs;
using ::testing::ElementsAre;
using testing::kService;
using testing::Page;
using testing::PagePairs;
using testing::RowAnswer;
using testing::UserInfoAnswer;

constexpr char kCheckedOut[] = "vti_sourcecontroltimecheckedout";

class ClientCheckOut : public testing::ClientTest {
 protected:
  std::string StatusOf(const std::string& row, const std::string& name = "Jane Doe") {
    m_site.userInfo = UserInfoAnswer("ID='12' Name='" + name + "'");
    m_site.row = RowAnswer(row);
    EXPECT_TRUE(Open());
    return Integer(&IClient::GetCheckOutStatus);
  }
  void OpenWith(const PagePairs& pairs) {
    m_site.document = Page(DocumentLines("Shared/b.xlsx", DocumentPairs(pairs)));
    ASSERT_TRUE(Open());
  }
  /// What the two requests of an operation are answered with.
  void AnswerOperation(const std::string& result) {
    m_platform.answers = {
        Xml(Envelope(std::string("<WebUrlFromPageUrlResponse xmlns='") + kService +
                     "'>http://docs.example.test/sites/a</WebUrlFromPageUrlResponse>")),
        Xml(Envelope("<XResponse xmlns='" + std::string(kService) + "'>" + result +
                     "</XResponse>"))};
  }
  std::string CheckIn(const std::string& result, LPCWSTR comment, INT type) {
    AnswerOperation("<CheckInFileResult>" + result + "</CheckInFileResult>");
    VARIANT_BOOL success = 7;
    const Bstr text(comment != nullptr ? comment : OLESTR(""));
    EXPECT_EQ(m_client->CheckIn(comment != nullptr ? text.Get() : nullptr, type, &success), S_OK);
    return success == VARIANT_TRUE ? "true" : success == VARIANT_FALSE ? "false" : "other";
  }
};

TEST_F(ClientCheckOut, WithoutADocumentTheStatusIsMinusOne) {
  EXPECT_EQ(Integer(&IClient::GetCheckOutStatus), "-1");
}

TEST_F(ClientCheckOut, TheHolderIsTheNameBehindTheNumber) {
  EXPECT_EQ(StatusOf("ows_CheckoutUser='12;#Jane Doe'"), "1");
  EXPECT_EQ(Text(&IClient::get_SharePointCheckoutUser), "Jane Doe");
}

TEST_F(ClientCheckOut, NamesCompareWithRegardToCase) {
  EXPECT_EQ(StatusOf("ows_CheckoutUser='12;#Jane Doe'", "jane doe"), "2");
}

TEST_F(ClientCheckOut, TwoPeopleOfOneNameCountAsOne) {
  EXPECT_EQ(StatusOf("ows_CheckoutUser='99;#Jane Doe'"), "1");
}

TEST_F(ClientCheckOut, AHolderWithoutANumberIsComparedWhole) {
  EXPECT_EQ(StatusOf("ows_CheckoutUser='Jane Doe'"), "1");
  EXPECT_EQ(StatusOf("ows_CheckoutUser='John Roe'"), "2");
}

TEST_F(ClientCheckOut, OfTwoSeparatorsTheFirstCounts) {
  EXPECT_EQ(StatusOf("ows_CheckoutUser='12;#Jane;#Doe'", "Jane;#Doe"), "1");
  EXPECT_EQ(Text(&IClient::get_SharePointCheckoutUser), "Jane;#Doe");
  EXPECT_EQ(StatusOf("ows_CheckoutUser='12;#Jane;#Doe'", "Doe"), "2");
}

TEST_F(ClientCheckOut, AnEmptyHolderIsNobody) {
  EXPECT_EQ(StatusOf("ows_CheckoutUser=''"), "0");
  EXPECT_EQ(StatusOf("ows_CheckoutUser='12;#'"), "0");
  EXPECT_EQ(StatusOf("ows_ID='7'"), "0");
  EXPECT_EQ(StatusOf("ows_checkoutuser='12;#Jane Doe'"), "0") << "another attribute";
}

TEST_F(ClientCheckOut, ARowThatCouldNotBeReadHasNoHolder) {
  m_site.row = {.error = 12030};
  ASSERT_TRUE(Open());
  EXPECT_EQ(Integer(&IClient::GetCheckOutStatus), "0");
}

TEST_F(ClientCheckOut, TheLoginPlaysNoPart) {
  EXPECT_EQ(StatusOf("ows_CheckoutUser='12;#EXAMPLE\\jane'"), "2");
}

TEST_F(ClientCheckOut, CheckingOutAsksTheWebAndThenItsListsService) {
  ASSERT_TRUE(Open());
  m_platform.calls.clear();
  m_platform.bodies.clear();
  AnswerOperation("<CheckOutFileResult>true</CheckOutFileResult>");
  EXPECT_EQ(Flag(&IClient::CheckOut), "true");
  EXPECT_THAT(Objects(), ElementsAre("docs.example.test:80/_vti_bin/webs.asmx",
                                     "docs.example.test:80/sites/a/_vti_bin/lists.asmx"));
  EXPECT_EQ(Method(1),
            "CheckOutFile* ( pageUrl* ( 'http://docs.example.test/sites/a/Shared/b.xlsx' ) "
            "checkOutToLocal* ( 'true' ) )");
}

// An object answers from its last open.
TEST_F(ClientCheckOut, AfterACheckOutTheStatusIsAsItWas) {
  ASSERT_TRUE(Open());
  const std::string before = State();
  AnswerOperation("<CheckOutFileResult>true</CheckOutFileResult>");
  EXPECT_EQ(Flag(&IClient::CheckOut), "true");
  EXPECT_EQ(Integer(&IClient::GetCheckOutStatus), "0");
  EXPECT_EQ(State(), before);
  EXPECT_EQ(CheckIn("true", OLESTR("c"), 1), "true");
  AnswerOperation("<UndoCheckOutResult>true</UndoCheckOutResult>");
  EXPECT_EQ(Integer(&IClient::UndoCheckOut), "0");
  EXPECT_EQ(State(), before);
  EXPECT_EQ(StatusOf("ows_CheckoutUser='12;#Jane Doe'"), "1") << "a new open knows";
}

TEST_F(ClientCheckOut, TheServersAnswerIsTheResult) {
  ASSERT_TRUE(Open());
  AnswerOperation("<CheckOutFileResult>false</CheckOutFileResult>");
  EXPECT_EQ(Flag(&IClient::CheckOut), "false");
  EXPECT_EQ(CheckIn("false", OLESTR("c"), 0), "false");
  AnswerOperation("<UndoCheckOutResult>false</UndoCheckOutResult>");
  EXPECT_EQ(Integer(&IClient::UndoCheckOut), "1");
}

TEST_F(ClientCheckOut, CommentAndTypeGoOutAsTheyAre) {
  ASSERT_TRUE(Open());
  m_platform.bodies.clear();
  EXPECT_EQ(CheckIn("true", OLESTR("a & b"), 7), "true");
  EXPECT_EQ(Method(1),
            "CheckInFile* ( pageUrl* ( 'http://docs.example.test/sites/a/Shared/b.xlsx' ) "
            "comment* ( 'a & b' ) checkinType* ( '7' ) )");
  m_platform.bodies.clear();
  EXPECT_EQ(CheckIn("true", nullptr, -1), "true");
  EXPECT_EQ(Method(1),
            "CheckInFile* ( pageUrl* ( 'http://docs.example.test/sites/a/Shared/b.xlsx' ) "
            "comment* checkinType* ( '-1' ) )");
}

TEST_F(ClientCheckOut, AFailedWebLookupOrActionIsTheFailureValue) {
  ASSERT_TRUE(Open());
  for (const std::size_t failing : {0U, 1U}) {
    for (const Refusal& refusal : Refusals()) {
      SCOPED_TRACE(std::to_string(failing) + " " + refusal.why);
      const auto answer = [&](const std::string& result) {
        AnswerOperation(result);
        m_platform.answers[failing] = refusal.answer;
      };
      answer("<CheckOutFileResult>true</CheckOutFileResult>");
      EXPECT_EQ(Flag(&IClient::CheckOut), "false");
      answer("<CheckInFileResult>true</CheckInFileResult>");
      VARIANT_BOOL success = 7;
      EXPECT_EQ(m_client->CheckIn(nullptr, 0, &success), S_OK);
      EXPECT_EQ(success, VARIANT_FALSE);
      answer("<UndoCheckOutResult>true</UndoCheckOutResult>");
      EXPECT_EQ(Integer(&IClient::UndoCheckOut), "-1");
      m_platform.answers.clear();
    }
  }
}

TEST_F(ClientCheckOut, WithoutADocumentTheyTryAndFail) {
  EXPECT_EQ(Flag(&IClient::CheckOut), "false");
  VARIANT_BOOL success = 7;
  EXPECT_EQ(m_client->CheckIn(nullptr, 0, &success), S_OK);
  EXPECT_EQ(success, VARIANT_FALSE);
  EXPECT_EQ(Integer(&IClient::UndoCheckOut), "-1");
}

TEST_F(ClientCheckOut, TheTimeOfTheCheckOutIsAFileTime) {
  EXPECT_EQ(Number(&IClient::get_CheckOutTime), "E_FAIL") << "with no document: no such date";
  OpenWith({{kCheckedOut, "Thu, 09 Jul 2009 06:00:00"}});
  EXPECT_EQ(Number(&IClient::get_CheckOutTime), "128915928000000000");
  OpenWith({});
  EXPECT_EQ(Number(&IClient::get_CheckOutTime), "E_FAIL");
  OpenWith({{kCheckedOut, "no date"}});
  EXPECT_EQ(Number(&IClient::get_CheckOutTime), "E_FAIL") << "a text";
}

TEST_F(ClientCheckOut, TheTimeOfTheCheckOutNeedsNoOpenDocument) {
  // Found, but with no etag, and so no id.
  m_site.document =
      Page(DocumentLines("Shared/b.xlsx", {{kCheckedOut, "Thu, 09 Jul 2009 06:00:00"}}));
  ASSERT_TRUE(Open());
  EXPECT_EQ(Text(&IClient::get_DocID), "");
  EXPECT_EQ(Number(&IClient::get_CheckOutTime), "128915928000000000");
  EXPECT_EQ(Number(&IClient::get_TimeLastModified), "E_FAIL");
}

// Servers mark a time's type with letters and "|", and such a value is no date for the typed read.
TEST_F(ClientCheckOut, TimesInTheLetterFormAnswerNoQuestion) {
  m_site.row = RowAnswer("ows_CheckoutUser='12;#Jane Doe'");
  OpenWith({{kCheckedOut, "TR|09 Jul 2009 06:00:00 -0000"},
            {"vti_timelastmodified", "TR|10 Jul 2009 06:00:00 -0000"},
            {"vti_timecreated", "TR|09 Jul 2009 06:00:00 -0000"}});
  EXPECT_EQ(Integer(&IClient::GetCheckOutStatus), "1");
  EXPECT_EQ(Number(&IClient::get_CheckOutTime), "E_FAIL");
  EXPECT_EQ(Flag(&IClient::get_ModifiedSinceCheckOut), "false");
  EXPECT_EQ(Flag(&IClient::IsInitialCreation), "false");
  EXPECT_EQ(Flag(&IClient::ShouldAskForCheckIn), "false");
}

TEST_F(ClientCheckOut, TimesThatAreDatesAnswerTheQuestions) {
  m_site.row = RowAnswer("ows_CheckoutUser='12;#Jane Doe'");
  OpenWith({{kCheckedOut, "Tue, 07 Jul 2009 06:00:00"},
            {"vti_timelastmodified", "Thu, 09 Jul 2009 06:00:00"},
            {"vti_timecreated", "Thu, 02 Jul 2009 06:00:00"}});
  EXPECT_EQ(Flag(&IClient::get_ModifiedSinceCheckOut), "true");
  EXPECT_EQ(Flag(&IClient::IsInitialCreation), "false");
  EXPECT_EQ(Flag(&IClient::ShouldAskForCheckIn), "true");
}

/// A client whose dates and own answers a test sets, and that notes what is asked through its
/// virtual table.
class ScriptedClient : public CClient {
 public:
  STDMETHODIMP get_FrontPageMetaInfo(BSTR MetaTag, VARIANT* pVal) override {
    const std::string key = testing::Printable(MetaTag);
    asked.push_back(key);
    if (const auto found = dates.find(key); found != dates.end()) {
      pVal->vt = VT_DATE;
      pVal->date = found->second;
    }
    return E_UNEXPECTED;
  }
  STDMETHODIMP get_SharePointCheckoutUser(BSTR* pVal) override {
    asked.emplace_back("user");
    return user ? (*pVal = SysAllocString(user->c_str()), E_UNEXPECTED)
                : CClient::get_SharePointCheckoutUser(pVal);
  }
  STDMETHODIMP GetCheckOutStatus(INT* Status) override {
    asked.emplace_back("status");
    return status ? (*Status = *status, E_UNEXPECTED) : CClient::GetCheckOutStatus(Status);
  }
  STDMETHODIMP get_ModifiedSinceCheckOut(VARIANT_BOOL* pVal) override {
    asked.emplace_back("modified");
    return modified ? (*pVal = *modified, E_UNEXPECTED) : CClient::get_ModifiedSinceCheckOut(pVal);
  }
  STDMETHODIMP IsInitialCreation(VARIANT_BOOL* Flag) override {
    asked.emplace_back("created");
    return created ? (*Flag = *created, E_UNEXPECTED) : CClient::IsInitialCreation(Flag);
  }

  std::map<std::string, double> dates;
  std::optional<WideString> user;
  std::optional<INT> status;
  std::optional<VARIANT_BOOL> modified;
  std::optional<VARIANT_BOOL> created;
  std::vector<std::string> asked;

 protected:
  ~ScriptedClient() = default;
};

class ClientQuestions : public testing::ClientTest {
 protected:
  ClientQuestions() {
    CComObject<ScriptedClient>* made = nullptr;
    EXPECT_EQ(CComObject<ScriptedClient>::CreateInstance(&made), S_OK);
    m_scripted = made;
    m_client = ComPtr<CClient>(made);
    EXPECT_TRUE(Open());
  }
  std::string Initial(double checkedOut, double created) {
    m_scripted->dates = {{kCheckedOut, checkedOut}, {"vti_timecreated", created}};
    return Flag(&IClient::IsInitialCreation);
  }
  std::string Modified(double checkedOut, double modified) {
    m_scripted->dates = {{kCheckedOut, checkedOut}, {"vti_timelastmodified", modified}};
    return Flag(&IClient::get_ModifiedSinceCheckOut);
  }

  ComPtr<ScriptedClient> m_scripted;
};

TEST_F(ClientQuestions, TheHolderIsAskedForThroughTheVirtualTable) {
  m_scripted->user = OLESTR("Jane Doe");
  EXPECT_EQ(Integer(&IClient::GetCheckOutStatus), "1");
  m_scripted->user = OLESTR("Somebody");
  EXPECT_EQ(Integer(&IClient::GetCheckOutStatus), "2");
}

TEST_F(ClientQuestions, CreatedAThirdOfASecondAfterTheCheckOutIsTheFirstUpload) {
  constexpr double kThird = 1.0 / 3 / 86400;
  EXPECT_EQ(Initial(39998.25, 39998.25 + kThird), "true");
  EXPECT_EQ(Initial(39998.25, 39998.25 - kThird), "true");
  EXPECT_EQ(Initial(39998.25, 39998.25), "true");
}

TEST_F(ClientQuestions, CreatedExactlyHalfASecondAwayIsNot) {
  // At 0 the sums are exact.
  EXPECT_EQ(Initial(0, HALF_SECOND), "false");
  EXPECT_EQ(Initial(0, -HALF_SECOND), "false");
  EXPECT_EQ(Initial(39998.25, 39998.25 + 1.0 / 86400), "false");
  EXPECT_EQ(Initial(39998.25, 39998.25 - 1.0 / 86400), "false");
}

// One instant on the linear scale, two numbers on the other: the raw ones are compared.
TEST_F(ClientQuestions, CreationIsComparedWithoutMirroring) {
  EXPECT_EQ(Initial(-0.25, 0.25), "false");
  EXPECT_EQ(Initial(-1.25, -1.25), "true");
}

TEST_F(ClientQuestions, AMissingDateIsFalse) {
  m_scripted->dates = {{kCheckedOut, 1.0}};
  EXPECT_EQ(Flag(&IClient::IsInitialCreation), "false");
  EXPECT_EQ(Flag(&IClient::get_ModifiedSinceCheckOut), "false");
  EXPECT_THAT(m_scripted->asked, ElementsAre("created", kCheckedOut, "vti_timecreated", "modified",
                                             kCheckedOut, "vti_timelastmodified"));
  m_scripted->asked.clear();
  m_scripted->dates = {{"vti_timecreated", 1.0}, {"vti_timelastmodified", 2.0}};
  EXPECT_EQ(Flag(&IClient::IsInitialCreation), "false");
  EXPECT_EQ(Flag(&IClient::get_ModifiedSinceCheckOut), "false");
  EXPECT_THAT(m_scripted->asked, ElementsAre("created", kCheckedOut, "modified", kCheckedOut))
      << "the second date is not read then";
}

TEST_F(ClientQuestions, EqualDatesAreNoModification) {
  EXPECT_EQ(Modified(39998.25, 39998.25), "false");
  EXPECT_EQ(Modified(39998.25, std::nextafter(39998.25, 40000.0)), "true") << "no tolerance";
  EXPECT_EQ(Modified(39998.25, 39998.0), "false");
}

TEST_F(ClientQuestions, ModificationIsComparedOnTheLinearScale) {
  // -1.75 is 18 hours of the day -1, -1.25 its 6 hours.
  EXPECT_EQ(Modified(-1.25, -1.75), "true");
  EXPECT_EQ(Modified(-1.75, -1.25), "false");
}

TEST_F(ClientQuestions, ADocumentHeldByAnotherIsNotAskedAbout) {
  for (const INT status : {2, 0, -1}) {
    m_scripted->asked.clear();
    m_scripted->status = status;
    m_scripted->modified = VARIANT_TRUE;
    EXPECT_EQ(Flag(&IClient::ShouldAskForCheckIn), "false") << status;
    EXPECT_THAT(m_scripted->asked, ElementsAre("status")) << "no date is read";
  }
}

TEST_F(ClientQuestions, AModifiedDocumentIsAskedAboutWithoutLookingFurther) {
  m_scripted->status = 1;
  m_scripted->modified = VARIANT_TRUE;
  EXPECT_EQ(Flag(&IClient::ShouldAskForCheckIn), "true");
  EXPECT_THAT(m_scripted->asked, ElementsAre("status", "modified"));
}

TEST_F(ClientQuestions, ANewDocumentIsAskedAbout) {
  m_scripted->status = 1;
  m_scripted->modified = VARIANT_FALSE;
  m_scripted->created = VARIANT_TRUE;
  EXPECT_EQ(Flag(&IClient::ShouldAskForCheckIn), "true");
  EXPECT_THAT(m_scripted->asked, ElementsAre("status", "modified", "created"));
  m_scripted->created = VARIANT_FALSE;
  EXPECT_EQ(Flag(&IClient::ShouldAskForCheckIn), "false");
}

}  // namespace
}  // namespace velandoc
