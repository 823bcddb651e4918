#include "hosts/command/step_failure.h"

#include <gtest/gtest.h>

#include "hosts/com_apartment.h"

namespace velandoc {
namespace {

class StepFailures : public ::testing::Test {
 protected:
  static ExchangeRecord Record(const char* operation, int status = 200,
                               const std::string& answer = {}, DWORD error = 0) {
    ExchangeRecord record;
    record.host = "docs.example.test";
    record.port = 80;
    record.operation = operation;
    record.sent = true;
    record.status = status;
    record.answer = answer;
    record.error = error;
    return record;
  }
  static std::vector<ExchangeRecord> AllSeven() {
    return {Record("open service"),    Record("GetUserInfo"),     Record("url to web url"),
            Record("getDocsMetaInfo"), Record("getDocsMetaInfo"), Record("GetListContentType"),
            Record("GetListItems")};
  }
  static std::vector<std::string> Told(const OpenedParts& parts,
                                       const std::vector<ExchangeRecord>& records) {
    std::vector<std::string> lines;
    for (const StepFailure& failure : ReviewOpen(parts, records)) {
      lines.push_back(FailureText(failure));
    }
    return lines;
  }
  using Lines = std::vector<std::string>;

 private:
  ComApartment m_apartment;
};

constexpr OpenedParts kAll = {true, true, true, true, true, true, true};

TEST_F(StepFailures, NothingIsTold) { EXPECT_EQ(Told(kAll, AllSeven()), Lines{}); }

TEST_F(StepFailures, TheUserLookupEndsTheOpen) {
  EXPECT_EQ(
      Told({.login = true}, {Record("open service"), Record("GetUserInfo", 404, "Not here.")}),
      Lines{"the question for the user's name (GetUserInfo) at docs.example.test failed: the "
            "server answered 404: Not here."});
}

TEST_F(StepFailures, ALostLoginIsToldBesideWhatItLedTo) {
  EXPECT_EQ(
      Told({}, {Record("open service", 0, "", ERROR_INTERNET_CANNOT_CONNECT),
                Record("GetUserInfo", 401)}),
      (Lines{"the question for the login (open service) at docs.example.test failed: no "
             "connection: nobody answers at that host and port (error 12029)",
             "the question for the user's name (GetUserInfo) at docs.example.test failed: the "
             "server answered 401: it wants another login"}));
}

TEST_F(StepFailures, AMissingLoginAloneIsTold) {
  OpenedParts parts = kAll;
  parts.login = false;
  EXPECT_EQ(Told(parts, AllSeven()),
            Lines{"the question for the login (open service) at docs.example.test failed: the "
                  "answer names no login"});
}

TEST_F(StepFailures, TheWebStandsForAllThatFollows) {
  auto records = AllSeven();
  records[2] = Record("url to web url", 200, "<title>Sign in</title>");
  EXPECT_EQ(Told({.user = true, .login = true}, records),
            Lines{"the question for the web (url to web url) at docs.example.test failed: the "
                  "server said: Sign in"});
}

TEST_F(StepFailures, AnUnknownDocument) {
  auto records = AllSeven();
  const OpenedParts parts = {.user = true, .login = true, .web = true, .list = true};
  EXPECT_EQ(Told(parts, records),
            Lines{"getDocsMetaInfo of the document at docs.example.test failed: the server knows "
                  "no such document"});
  records[3].answer = "<p>status=\n<ul>\n<li>status=589830\n<li>msg=There is no file.\n</ul>";
  EXPECT_EQ(Told(parts, records),
            Lines{"getDocsMetaInfo of the document at docs.example.test failed: the server said: "
                  "There is no file."});
}

TEST_F(StepFailures, AFolderWithoutAList) {
  auto records = AllSeven();
  records[4].status = 403;
  const OpenedParts parts = {.user = true, .login = true, .web = true, .document = true};
  EXPECT_EQ(Told(parts, records), Lines{"getDocsMetaInfo of the folder at docs.example.test "
                                        "failed: the server answered 403"});
}

TEST_F(StepFailures, ColumnsThatDidNotComeKeepTheRowAway) {
  auto records = AllSeven();
  records.pop_back();
  records.back() = Record("GetListContentType", 200, "half", ERROR_INTERNET_CONNECTION_ABORTED);
  OpenedParts parts = kAll;
  parts.row = false;
  EXPECT_EQ(Told(parts, records),
            Lines{"GetListContentType at docs.example.test failed: the answer broke off: the "
                  "connection broke off (error 12030)"});
}

TEST_F(StepFailures, APageInPlaceOfTheColumns) {
  auto records = AllSeven();
  records[5].answer = "<html><title>Sign in</title></html>";
  OpenedParts parts = kAll;
  parts.columns = false;
  EXPECT_EQ(Told(parts, records),
            Lines{"GetListContentType at docs.example.test failed: the server said: Sign in"});
  records[5].answer = "<a><GetListContentTypeResult/></a>";
  EXPECT_EQ(Told(parts, records), Lines{}) << "a content type without columns is one";
}

TEST_F(StepFailures, ALoginThatIsNotKeptIsNoFailure) {
  ExchangeRecord login = Record("open service", 200, "<li>vti_username\n<li>SX|jane");
  const Lines user = {
      "the question for the user's name (GetUserInfo) at docs.example.test failed: the answer "
      "names no user"};
  EXPECT_EQ(Told({}, {login, Record("GetUserInfo")}), user);
}

TEST_F(StepFailures, ARowThatDidNotCome) {
  OpenedParts parts = kAll;
  parts.row = false;
  EXPECT_EQ(Told(parts, AllSeven()),
            Lines{"GetListItems at docs.example.test failed: the list has no such row"});
}

TEST_F(StepFailures, WithoutARequestNothingCouldBeSent) {
  EXPECT_EQ(Told({.login = true}, {}),
            Lines{"the question for the user's name (GetUserInfo) failed: it could not be sent"});
  ExchangeRecord unmade = Record("", 0, "", 4711);
  unmade.sent = false;
  EXPECT_EQ(Told({.login = true}, {unmade}),
            Lines{"the question for the user's name (GetUserInfo) failed: it could not be sent: "
                  "error 4711"});
}

TEST_F(StepFailures, AnUnusualPortIsToldAndTheProxyNamed) {
  ExchangeRecord record = Record("x", 407);
  record.port = 8080;
  EXPECT_EQ(FailureText(ExplainFailure("x", record, "")),
            "x at docs.example.test:8080 failed: the proxy answered 407: it wants a login");
}

TEST_F(StepFailures, NetworkErrorsHaveWordsOrAtLeastANumber) {
  EXPECT_EQ(NetworkErrorText(ERROR_INTERNET_NAME_NOT_RESOLVED),
            "the host's name is not known (error 12007)");
  EXPECT_EQ(NetworkErrorText(4711), "error 4711");
}

}  // namespace
}  // namespace velandoc
