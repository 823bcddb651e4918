#include "frontpage/current_user.h"

#include "tests/support/fault_code_page.h"
#include "tests/unit/frontpage/flow_fixture.h"

namespace velandoc {
namespace {

using testing::Answer;
using testing::AnswerPage;
using testing::ServiceLines;
using testing::Shown;
using testing::StatusLines;

constexpr char kServiceRequest[] = "method=open+service";
constexpr char kUserRequest[] = "GetUserInfo";

std::string User(const std::string& attributes) {
  const std::string uri = "http://schemas.microsoft.com/sharepoint/soap/directory/";
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>"
         "<soap:Envelope xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/\"><soap:Body>"
         "<GetUserInfoResponse xmlns=\"" +
         uri + "\"><GetUserInfoResult><GetUserInfo><User " + attributes +
         "/></GetUserInfo></GetUserInfoResult></GetUserInfoResponse></soap:Body></soap:Envelope>";
}

class CurrentUserTest : public testing::FlowTest {
 protected:
  CurrentUserTest() {
    Service(Page(AnswerPage(ServiceLines({{"vti_username", "SX|DOM&#92;bob"}}))));
    Directory(Page(User("ID=\"7\" Name=\"Bob\"")));
  }

  void Service(Answer answer) { Reply(0, kServiceRequest, std::move(answer)); }
  void Directory(Answer answer) { Reply(1, kUserRequest, std::move(answer)); }

  // "true login", or "false -".
  static std::string Query(LPCWSTR url = OLESTR("http://h.test")) {
    Bstr login(OLESTR("-"));
    const bool answered = QueryUserLogin(url, login);
    return std::string(answered ? "true " : "false ") + Shown(login);
  }
  // "true login name", or "false - -".
  static std::string Ask(LPCWSTR url = OLESTR("http://h.test")) {
    Bstr login(OLESTR("-"));
    Bstr name(OLESTR("-"));
    std::string outcome;
    try {
      outcome = GetCurrentUser(url, &login, &name) ? "true " : "false ";
    } catch (const _com_error& error) {
      EXPECT_TRUE(error.Error() == E_UNEXPECTED || error.Error() == E_POINTER) << error.Error();
      outcome = "raised ";
    }
    return outcome + Shown(login) + " " + Shown(name);
  }

 private:
  void Reply(std::size_t index, const char* request, Answer answer) {
    m_site.replies.resize(2);
    m_site.replies[index] = {request, std::move(answer)};
  }
};

TEST_F(CurrentUserTest, TheLoginIsAskedForAtTheServersRoot) {
  EXPECT_EQ(Query(OLESTR("http://h.test:8080/sites/a?x=y")), "true DOM\\bob");
  EXPECT_EQ(m_site.calls[1], "InternetConnectW(1, h.test, 80, null, null, 3, 0x200, 0)")
      << "on the scheme's default port";
  EXPECT_EQ(m_site.calls[2],
            "HttpOpenRequestW(2, POST, _vti_bin/_vti_aut/author.dll, null, null, text/*, 0x400200, "
            "0)");
  EXPECT_THAT(m_site.bodies, ::testing::ElementsAre("method=open+service"));
}

TEST_F(CurrentUserTest, AnAnsweredServiceIsTrueWhateverItSays) {
  const struct {
    std::string page;
    const char* outcome;
    const char* why;
  } cases[] = {
      {AnswerPage(ServiceLines({{"vti_username", "SX|"}})), "true ", "an empty login"},
      {AnswerPage(ServiceLines({{"vti_username", "bob"}})), "true ", "a value without a type"},
      {AnswerPage(ServiceLines({{"VTI_USERNAME", "SX|bob"}})), "true ", "another key"},
      {AnswerPage(ServiceLines({{"vti_username", "SX|a|b"}})), "true a|b", "a further bar"},
      {AnswerPage(StatusLines("1", "m")), "true ", "a status"},
      {AnswerPage(
           "<ul>\n<li>meta_info=\n<ul>\n<li>vti_username\n<li>SX|bob\n<li>x\n</ul>\n</ul>\n"),
       "true bob", "pairs of an odd count"},
      {"", "true ", "an empty body"},
      {"plain text", "true ", "no page"},
      {"<html><br>Sign in</html>", "true ", "a login page"},
  };
  for (const auto& test : cases) {
    Service(Page(test.page));
    EXPECT_EQ(Query(), test.outcome) << test.why;
  }
}

TEST_F(CurrentUserTest, AFailedServiceLeavesTheLoginUnwritten) {
  for (const auto& [answer, why] : FailedRequests()) {
    Service(answer);
    EXPECT_EQ(Query(), "false -") << why;
  }
  EXPECT_EQ(Query(OLESTR("h.test")), "false -") << "no scheme";
  EXPECT_EQ(Query(nullptr), "false -");
}

TEST_F(CurrentUserTest, TheDirectoryIsAskedForTheLogin) {
  EXPECT_EQ(Ask(), "true DOM\\bob Bob");
  ASSERT_EQ(m_site.bodies.size(), 2U);
  EXPECT_THAT(m_site.bodies[1], ::testing::HasSubstr(">DOM\\bob</"));
  EXPECT_EQ(m_site.CallsOf("HttpOpenRequestW")[1],
            "HttpOpenRequestW(5, POST, /_vti_bin/usergroup.asmx, null, null, text/*, 0x400200, 0)");
}

TEST_F(CurrentUserTest, NoResultNeedBeWanted) {
  EXPECT_TRUE(GetCurrentUser(OLESTR("http://h.test"), nullptr, nullptr));
  Directory(Page(User("ID=\"7\"")));
  EXPECT_FALSE(GetCurrentUser(OLESTR("http://h.test"), nullptr, nullptr))
      << "a user without a name is none, wanted or not";
}

TEST_F(CurrentUserTest, TheUsersNumberIsAskedForAndDropped) {
  Directory(Page(User("Name=\"Bob\"")));
  EXPECT_EQ(Ask(), "false - -");
}

TEST_F(CurrentUserTest, AMissingLoginGoesOnEmptyAndDependsOnTheDirectory) {
  Service(Page(AnswerPage(ServiceLines({{"vti_title", "SR|x"}}))));
  EXPECT_EQ(Ask(), "true  Bob");
  EXPECT_THAT(m_site.bodies[1], ::testing::Not(::testing::HasSubstr("DOM")));
  Directory(Answer{.status = OLESTR("500")});
  EXPECT_EQ(Ask(), "false - -");
}

TEST_F(CurrentUserTest, AFailedServiceGoesOnWithANullLogin) {
  for (const auto& [answer, why] : FailedRequests()) {
    m_site.bodies.clear();
    Service(answer);
    EXPECT_EQ(Ask(), "true null Bob") << why;
    ASSERT_EQ(m_site.bodies.size(), 2U) << why;
    EXPECT_THAT(m_site.bodies[1], ::testing::HasSubstr("userLoginName")) << why;
  }
}

TEST_F(CurrentUserTest, AFailedDirectoryIsFalseWithNothingWritten) {
  for (const auto& [answer, why] : FailedRequests()) {
    Directory(answer);
    EXPECT_EQ(Ask(), "false - -") << why;
  }
  for (const std::string& page : UnreadablePages()) {
    Directory(Page(page));
    EXPECT_EQ(Ask(), "false - -") << page;
  }
}

TEST_F(CurrentUserTest, AStatusEndsNothing) {
  Service(
      Page(AnswerPage(StatusLines("589830", "m") + ServiceLines({{"vti_username", "SX|bob"}}))));
  EXPECT_EQ(Ask(), "true bob Bob");
}

TEST_F(CurrentUserTest, EachFailureOfTheNetworkCostsTheLoginOrTheUser) {
  EXPECT_EQ(NetworkFaults([] { return Ask(); }),
            "1 true DOM\\bob Bob; 4 true null Bob, 2 true DOM\\bob Bob, 3 true null Bob, 4 false "
            "- -, 2 true DOM\\bob Bob, 3 false - -");
}

TEST_F(CurrentUserTest, EachFailureOfAConversionCostsTheLoginOrTheUser) {
  m_site.replies.emplace_back("", Answer{.status = OLESTR("400")});
  EXPECT_EQ(ConversionFaults([] { return Ask(); }),
            "1 true DOM\\bob Bob; 2 true null Bob, 1 true  Bob, 3 false - -");
}

TEST_F(CurrentUserTest, EachFailureOfTheDomIsAnUnreadAnswerOrRaised) {
  // Making and loading the page, eight steps of reading it, twelve of the directory's request; what
  // fails in the directory's answer is its own affair.
  EXPECT_EQ(DomFaults([] { return Ask(); }),
            "1 true DOM\\bob Bob; 2 true  Bob, 1 raised - -, 1 true  Bob, 20 raised - -, 2 false - "
            "-, 1 raised - -, 1 false - -, 1 raised - -, 7 false - -");
}

TEST_F(CurrentUserTest, AShortageOfMemoryIsRaised) {
  testing::ExhaustedCodePage exhausted;
  PortScope<CodePage> scope(exhausted);
  for (const bool whole : {false, true}) {
    try {
      Bstr login;
      if (whole) {
        GetCurrentUser(OLESTR("http://h.test"), nullptr, nullptr);
      } else {
        QueryUserLogin(OLESTR("http://h.test"), login);
      }
      ADD_FAILURE() << "nothing was raised";
    } catch (const _com_error& error) {
      EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
    }
  }
  EXPECT_EQ(m_site.OpenHandles(), 0);
}

}  // namespace
}  // namespace velandoc
