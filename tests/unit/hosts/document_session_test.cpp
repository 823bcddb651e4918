#include "hosts/command/document_session.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "hosts/com_apartment.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using velandoc::testing::Answer;
using velandoc::testing::ScriptedWinInet;

constexpr char kUrl[] = "http://docs.example.test/a.docx";

class Sessions : public ::testing::Test {
 protected:
  ScriptedWinInet m_below;

 private:
  ComApartment m_apartment;
  PortScope<WinInet> m_scope{m_below};
};

TEST_F(Sessions, APlatformThatMakesNoRequestIsToldAndNothingIsLeftOpen) {
  for (const char* failing : {"InternetOpenW", "InternetConnectW", "HttpOpenRequestW"}) {
    m_below.failing = {failing};
    DocumentSession session;
    EXPECT_FALSE(session.Open(kUrl)) << failing;
    ASSERT_EQ(session.Missing().size(), 2U) << failing;
    EXPECT_TRUE(session.Missing()[1].what.starts_with("it could not be sent")) << failing;
    EXPECT_EQ(m_below.OpenHandles(), 0) << failing;
  }
}

TEST_F(Sessions, TheEarlierPortServesAgainBehindASession) {
  m_below.failing = {"InternetOpenW"};
  {
    const DocumentSession session;
    EXPECT_NE(&CurrentPort<WinInet>(), &m_below);
  }
  EXPECT_EQ(&CurrentPort<WinInet>(), &m_below);
}

TEST_F(Sessions, WhatAMemberRaisesIsText) {
  std::string exception;
  DocumentSession::Guard(exception, [] { _com_issue_error(E_POINTER); });
  EXPECT_EQ(exception, "the component raised 0x80004003");
  DocumentSession::Guard(exception, [] { throw std::out_of_range("invalid string position"); });
  EXPECT_EQ(exception, "the component raised an exception: invalid string position");
}

TEST_F(Sessions, ARefusalIsToldWithItsWords) {
  m_below.answers = {Answer{.status = OLESTR("404"), .chunks = {"Not here."}},
                     Answer{.status = OLESTR("403"), .chunks = {"<title>Keep out</title>"}}};
  DocumentSession session;
  EXPECT_FALSE(session.Open(kUrl));
  ASSERT_EQ(session.Missing().size(), 2U);
  EXPECT_EQ(session.Missing()[0].what, "the server answered 404: Not here.");
  EXPECT_EQ(session.Missing()[1].what, "the server answered 403: Keep out");
  EXPECT_EQ(session.Missing()[1].host, "docs.example.test");
  EXPECT_EQ(m_below.OpenHandles(), 0);
}

TEST_F(Sessions, APathOnNoShareSendsNothing) {
  DocumentSession session;
  EXPECT_FALSE(session.Open("no share.docx"));
  EXPECT_TRUE(session.Missing().empty());
  EXPECT_EQ(m_below.calls, std::vector<std::string>{});
}

}  // namespace
}  // namespace velandoc
