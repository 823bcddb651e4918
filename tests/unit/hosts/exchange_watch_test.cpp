#include "hosts/command/exchange_watch.h"

#include <gtest/gtest.h>

#include "connection/wininet_connection.h"
#include "hosts/com_apartment.h"
#include "soap/soap_connection.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using velandoc::testing::Answer;
using velandoc::testing::ScriptedWinInet;

TEST(ExchangeWatch, FindsTheOperation) {
  EXPECT_EQ(FindOperation(OLESTR("Content-Type: text/xml; charset=utf-8\nSOAPAction: "
                                 "http://schemas.microsoft.com/sharepoint/soap/GetListItems"),
                          "<soap/>"),
            "GetListItems");
  EXPECT_EQ(FindOperation(OLESTR("SOAPAction: urn:a/b/GetUserInfo\r\nX: /y"), ""), "GetUserInfo");
  EXPECT_EQ(FindOperation(OLESTR("SOAPAction: Bare"), ""), "Bare");
  EXPECT_EQ(FindOperation(OLESTR(""), "method=open+service"), "open service");
  EXPECT_EQ(FindOperation(OLESTR(""), "method=url+to+web+url%3a12.0.0.6665&url=%2fa"),
            "url to web url");
  EXPECT_EQ(FindOperation(OLESTR(""), "other=1"), "");
  EXPECT_EQ(FindOperation({}, {}), "");
}

class Watched : public ::testing::Test {
 protected:
  Watched() : m_watch(m_below), m_scope(m_watch) {}

  /// One request over the connection core; what the caller made of it.
  HRESULT Exchange() {
    CWinInetConnection connection(OLESTR("http://docs.example.test:8080/a?b"), OLESTR("POST"),
                                  true);
    HRESULT result = connection.Open(OLESTR("SOAPAction: urn:x/Do"), OLESTR("body"));
    if (SUCCEEDED(result)) result = connection.SendWithRetry();
    if (SUCCEEDED(result) && !connection.ReadResponse()) result = E_FAIL;
    m_error = connection.m_lastError;
    m_text = connection.GetResponseText();
    return result;
  }
  const ExchangeRecord& Record() const { return m_watch.Records().at(0); }

  ScriptedWinInet m_below;
  ExchangeWatch m_watch;
  DWORD m_error = 0;
  std::string m_text;

 private:
  PortScope<WinInet> m_scope;
};

TEST_F(Watched, AGoodAnswerIsKeptAndHandedOn) {
  m_below.answers = {Answer{.chunks = {"one", "two"}}};
  EXPECT_EQ(Exchange(), S_OK);
  EXPECT_EQ(m_text, "onetwo");
  ASSERT_EQ(m_watch.Records().size(), 1U);
  EXPECT_EQ(Record().host, "docs.example.test");
  EXPECT_EQ(Record().port, 8080);
  EXPECT_EQ(Record().path, "/a?b");
  EXPECT_EQ(Record().operation, "Do");
  EXPECT_TRUE(Record().sent);
  EXPECT_EQ(Record().error, 0U);
  EXPECT_EQ(Record().status, 200);
  EXPECT_EQ(Record().answer, "onetwo");
}

TEST_F(Watched, ARefusalIsReadWhenItsRequestIsClosed) {
  m_below.answers = {Answer{.status = OLESTR("500"), .chunks = {"fault"}}};
  EXPECT_EQ(Exchange(), E_FAIL);
  EXPECT_EQ(Record().status, 500);
  EXPECT_EQ(Record().answer, "fault");
  EXPECT_EQ(m_below.CallsOf("InternetCloseHandle").size(), 3U);
  EXPECT_EQ(m_below.OpenHandles(), 0);
}

TEST_F(Watched, NoMoreIsReadOfARefusalThanTheLimit) {
  Answer answer{.status = OLESTR("500")};
  answer.chunks.assign(20, std::string(8192, 'x'));
  m_below.answers = {answer};
  EXPECT_EQ(Exchange(), E_FAIL);
  EXPECT_EQ(Record().answer.size(), ExchangeRecord::kRefusalLimit);
  EXPECT_EQ(m_below.CallsOf("InternetReadFile").size(), 8U);
}

TEST_F(Watched, AGoodAnswerIsHandedOnWholeAndKeptUpToTheLimit) {
  Answer answer;
  answer.chunks.assign(520, std::string(8192, 'x'));
  m_below.answers = {answer};
  EXPECT_EQ(Exchange(), S_OK);
  EXPECT_EQ(m_text.size(), std::size_t{520} * 8192);
  EXPECT_EQ(Record().answer.size(), ExchangeRecord::kAnswerLimit);
}

TEST_F(Watched, AnAnswerThatAsksForALoginIsLeftAlone) {
  for (const LPCWSTR status : {OLESTR("401"), OLESTR("407")}) {
    m_below.calls.clear();
    m_below.answers.assign(4, Answer{.status = status, .chunks = {"page"}});
    m_below.dialogResults.assign(3, ERROR_INTERNET_FORCE_RETRY);
    EXPECT_EQ(Exchange(), E_FAIL);
    EXPECT_EQ(m_below.CallsOf("HttpSendRequestW").size(), 4U);
    EXPECT_EQ(m_below.CallsOf("InternetReadFile").size(), 0U);
    EXPECT_EQ(m_watch.Records().back().answer, "");
  }
  EXPECT_EQ(m_watch.Records().size(), 2U) << "repetitions belong to their request";
}

TEST_F(Watched, TheLatestSendOfARequestCounts) {
  m_below.answers = {Answer{.status = OLESTR("401")}, Answer{.chunks = {"in"}}};
  m_below.dialogResults = {ERROR_INTERNET_FORCE_RETRY};
  EXPECT_EQ(Exchange(), S_OK);
  EXPECT_EQ(Record().status, 200);
  EXPECT_EQ(Record().answer, "in");
}

TEST_F(Watched, AFailedSendHasItsErrorAndSoHasTheCaller) {
  m_below.answers = {Answer{.error = ERROR_INTERNET_CANNOT_CONNECT}};
  EXPECT_EQ(Exchange(), E_FAIL);
  EXPECT_EQ(m_error, ERROR_INTERNET_CANNOT_CONNECT) << "not spoilt by the watch's own calls";
  EXPECT_EQ(Record().error, ERROR_INTERNET_CANNOT_CONNECT);
  EXPECT_EQ(Record().status, 0);
}

TEST_F(Watched, ABrokenReadHasItsError) {
  m_below.answers = {Answer{.chunks = {"half"}, .readError = ERROR_INTERNET_CONNECTION_ABORTED}};
  EXPECT_EQ(Exchange(), E_FAIL);
  EXPECT_EQ(Record().error, ERROR_INTERNET_CONNECTION_ABORTED);
  EXPECT_EQ(Record().answer, "half");
}

TEST_F(Watched, ARequestThatCannotBeMadeIsRecordedToo) {
  m_below.failing = {"HttpOpenRequestW"};
  EXPECT_EQ(Exchange(), E_FAIL);
  ASSERT_EQ(m_watch.Records().size(), 1U);
  EXPECT_FALSE(Record().sent);
  EXPECT_EQ(Record().error, ERROR_INVALID_HANDLE);
}

}  // namespace
}  // namespace velandoc
