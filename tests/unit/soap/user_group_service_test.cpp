#include "soap/user_group_service.h"

#include <gmock/gmock.h>

#include "platform/code_page.h"
#include "tests/support/fault_code_page.h"
#include "tests/unit/soap/service_fixture.h"

namespace velandoc {
namespace {

using testing::Answer;
using ::testing::ElementsAre;
using testing::Printable;

std::string Result(const std::string& attributes) {
  return std::string("<GetUserInfoResponse xmlns=\"") + testing::kDirectory +
         "\"><GetUserInfoResult><GetUserInfo xmlns=\"" + testing::kDirectory + "\"><User " +
         attributes + "/></GetUserInfo></GetUserInfoResult></GetUserInfoResponse>";
}

constexpr char kAnn[] =
    "ID=\"7\" Sid=\"S-1-5-21\" Name=\"Ann \xC3\x85str\xC3\xB6m\" LoginName=\"DOM\\ann\" "
    "Email=\"ann@h\" Notes=\"\" IsSiteAdmin=\"False\" IsDomainGroup=\"False\" Flags=\"0\"";

class GetUserInfoTest : public testing::ServiceTest {
 protected:
  // "name|id", either "-" if it was not touched; "none" for false.
  std::string Ask(Answer answer, bool name = true, bool id = true) {
    m_platform.answers = {std::move(answer)};
    Bstr nameText(OLESTR("-"));
    Bstr idText(OLESTR("-"));
    const bool found = GetUserInfo(OLESTR("http://h"), OLESTR("DOM\\ann"),
                                   name ? &nameText : nullptr, id ? &idText : nullptr);
    EXPECT_EQ(m_platform.OpenHandles(), 0);
    const std::string both =
        Printable(nameText.Text().c_str()) + "|" + Printable(idText.Text().c_str());
    EXPECT_TRUE(found || both == "-|-") << both;
    return found ? both : "none";
  }
  static std::string Run() {
    Bstr name(OLESTR("-"));
    Bstr id(OLESTR("-"));
    const bool found = GetUserInfo(OLESTR("http://h"), OLESTR("DOM\\ann"), &name, &id);
    if (found) return name.View() == OLESTR("Ann") && id.View() == OLESTR("7") ? "ok" : "wrong";
    return name.View() == OLESTR("-") && id.View() == OLESTR("-") ? "false" : "touched";
  }
};

TEST_F(GetUserInfoTest, AsksTheUserGroupServiceInItsOwnNamespace) {
  EXPECT_EQ(Ask(Xml(Envelope(Result(kAnn)))), "Ann \\u00c5str\\u00f6m|7");
  EXPECT_THAT(Objects(), ElementsAre("h:80/_vti_bin/usergroup.asmx"));
  EXPECT_EQ(Action(0), "http://schemas.microsoft.com/sharepoint/soap/directory/GetUserInfo");
  EXPECT_EQ(Method(0), "GetUserInfo** ( userLoginName** ( 'DOM\\ann' ) )");
}

TEST_F(GetUserInfoTest, TheServerRootIsTakenAsItIs) {
  m_platform.answers = {Xml(Envelope(Result(kAnn)))};
  EXPECT_TRUE(GetUserInfo(OLESTR("https://h:8443/sites/a"), nullptr, nullptr, nullptr));
  EXPECT_THAT(Objects(), ElementsAre("h:8443/sites/a/_vti_bin/usergroup.asmx"));
  EXPECT_EQ(Method(0), "GetUserInfo** ( userLoginName** )");
}

TEST_F(GetUserInfoTest, WithoutARootNothingIsSent) {
  EXPECT_FALSE(GetUserInfo(nullptr, OLESTR("a"), nullptr, nullptr));
  EXPECT_FALSE(GetUserInfo(OLESTR(""), OLESTR("a"), nullptr, nullptr));
  EXPECT_TRUE(m_platform.bodies.empty());
}

TEST_F(GetUserInfoTest, EveryKindOfEnvelopeIsRead) {
  for (const std::string& answer : Envelopes(Result("ID='7' Name='Ann'"))) {
    EXPECT_EQ(Ask(Xml(answer)), "Ann|7") << answer;
  }
}

TEST_F(GetUserInfoTest, WhatIsNotWantedIsNeverRead) {
  EXPECT_EQ(Ask(Xml(Envelope(Result("Name='Ann'"))), true, false), "Ann|-") << "no ID needed";
  EXPECT_EQ(Ask(Xml(Envelope(Result("ID='7'"))), false, true), "-|7") << "no Name needed";
  EXPECT_EQ(Ask(Xml(Envelope(Result(""))), false, false), "-|-") << "a user is all it takes";
}

TEST_F(GetUserInfoTest, AnAnswerWithoutTheUserOrTheAttributeIsFalse) {
  const std::string directory = testing::kDirectory;
  const std::string service = testing::kService;
  const struct {
    std::string content;
    const char* outcome;
    const char* why;
  } cases[] = {
      {Result("Name='Ann'"), "none", "no ID; the name is not handed over alone"},
      {Result("ID='7'"), "none", "no Name"},
      {Result("id='7' name='Ann'"), "none", "names are case-sensitive"},
      {Result("ID='' Name=''"), "|", "empty values are values"},
      {Result("x:ID='8' xmlns:x='urn:x' ID='7' Name='Ann'"), "Ann|7", "the one without a prefix"},
      {"<GetUserInfo xmlns='" + directory + "'><User ID='7' Name='Ann'/></GetUserInfo>", "Ann|7",
       "wherever the element of the method's name stands"},
      {"<GetUserInfo xmlns='" + directory + "'><x><User ID='7' Name='Ann'/></x></GetUserInfo>",
       "none", "right inside it"},
      {"<GetUserInfo xmlns='" + service + "'><User ID='7' Name='Ann'/></GetUserInfo>", "none",
       "the other services' namespace"},
      {"<GetUserInfo><User ID='7' Name='Ann'/></GetUserInfo>", "none", "no namespace"},
      {"<GetUserInfoResult xmlns='" + directory + "'><User ID='7' Name='Ann'/></GetUserInfoResult>",
       "none", "no element of the method's name"},
      {Result("ID='1' Name='a'") + Result("ID='2' Name='b'"), "a|1", "the first"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(Ask(Xml(Envelope(test.content))), test.outcome) << test.why;
  }
}

TEST_F(GetUserInfoTest, AFailedCallIsFalse) {
  for (const Refusal& refusal : Refusals()) EXPECT_EQ(Ask(refusal.answer), "none") << refusal.why;
}

TEST_F(GetUserInfoTest, AFailureOfTheDomRaisesBeforeTheAnswerAndIsFalseBehindIt) {
  EXPECT_EQ(DomFaults({Xml(Envelope(Result("ID='7' Name='Ann'")))}, Run),
            "6 raised E_POINTER, 6 raised, 2 false, 1 raised, 1 false, 1 raised, 7 false");
}

TEST_F(GetUserInfoTest, AFailureOfTheNetworkIsFalse) {
  EXPECT_EQ(NetworkFaults({Xml(Envelope(Result("ID='7' Name='Ann'")))}, Run),
            "4 false, 2 ok, 3 false");
}

TEST_F(GetUserInfoTest, AShortageOfMemoryRaises) {
  testing::ExhaustedCodePage exhausted;
  PortScope<CodePage> scope(exhausted);
  EXPECT_EQ(testing::OutcomeOf(Run), "raised E_OUTOFMEMORY");
  EXPECT_EQ(m_platform.OpenHandles(), 0);
}

}  // namespace
}  // namespace velandoc
