#include "hosts/command/hdfs_failure.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "platform/wininet_types.h"

namespace velandoc {
namespace {

TEST(RemoteException, IsReadFromJsonAlone) {
  const auto found = FindRemoteException(
      R"({"RemoteException":{"exception":"A","javaClassName":"x.A","message":"m\nn"}})");
  ASSERT_TRUE(found);
  EXPECT_EQ(found->exception, "A");
  EXPECT_EQ(found->javaClassName, "x.A");
  EXPECT_EQ(found->message, "m\nn");
  const auto bare = FindRemoteException(R"({"RemoteException":{"message":1}})");
  ASSERT_TRUE(bare);
  EXPECT_EQ(bare->exception + bare->message, "");
  for (const char* answer : {"", "x", "[]", "{}", R"({"RemoteException":"A"})",
                             R"({"RemoteException":{"exception":"A)"}) {
    EXPECT_FALSE(FindRemoteException(answer)) << answer;
  }
}

HdfsExchange Exchange(int status, const char* answer, DWORD error = 0, bool isDataNode = false) {
  HdfsExchange exchange;
  exchange.verb = "GET";
  exchange.host = "h";
  exchange.port = 9870;
  exchange.isDataNode = isDataNode;
  exchange.status = status;
  exchange.answer = answer;
  exchange.error = error;
  return exchange;
}

TEST(HdfsFailure, TellsWhoSaidWhat) {
  constexpr const char* kAt = "OPEN of '/a' at name node h:9870 failed: ";
  struct Row {
    HdfsExchange exchange;
    std::string what;
    int exitCode;
  };
  const Row rows[] = {
      {Exchange(404,
                R"({"RemoteException":{"exception":"FileNotFoundException","message":"m\nat x"}})"),
       "404 FileNotFoundException: m", kExitNotOpened},
      {Exchange(403, R"({"RemoteException":{"exception":"StandbyException","message":"m"}})"),
       "403 StandbyException: m", kExitNoNode},
      {Exchange(403, R"({"RemoteException":{"exception":"FileAlreadyExistsException"}})"),
       "403 FileAlreadyExistsException", kExitExists},
      {Exchange(401, "<html>"), "401: it wants another login", kExitNo},
      {Exchange(307, ""), "307: it names no data node", kExitNo},
      {Exchange(500, ""), "500 where 200 was expected", kExitNo},
      {Exchange(400, "<html><title>Bad</title>"), "400: Bad", kExitNo},
      {Exchange(0, "", ERROR_INTERNET_CONNECTION_RESET),
       "the server reset the connection (error 12031)", kExitNoNode},
      {Exchange(200, "", ERROR_INTERNET_CONNECTION_ABORTED),
       "the answer broke off: the connection broke off (error 12030)", kExitIncomplete},
  };
  for (const Row& row : rows) {
    const HdfsFailure failure = ExplainExchange("OPEN", "/a", row.exchange, 200);
    EXPECT_EQ(FailureText(failure), kAt + row.what);
    EXPECT_EQ(failure.exitCode, row.exitCode) << row.what;
  }
  const HdfsFailure data = ExplainExchange("OPEN", "/\x1B", Exchange(404, "", 0, true), 200);
  EXPECT_EQ(FailureText(data),
            "OPEN of '/\\x1B' at data node h:9870 failed: 404 where 200 was expected");
  EXPECT_EQ(FailureText(LocalFailure("writing", "a", "no room", kExitLocalFile)),
            "writing of 'a' failed: no room");
}

TEST(HdfsFailure, IsJsonToo) {
  const auto json = FailureJson(ExplainExchange(
      "OPEN", "/a",
      Exchange(404,
               R"({"RemoteException":{"exception":"E","javaClassName":"x.E","message":"m\nn"}})"),
      200));
  EXPECT_EQ(json["host"], "h:9870");
  EXPECT_EQ(json["node"], "name node");
  EXPECT_EQ(json["httpCode"], 404);
  EXPECT_EQ(json["exception"], "E");
  EXPECT_EQ(json["message"], "m\nn");
  EXPECT_TRUE(json["networkError"].is_null());
  EXPECT_TRUE(FailureJson(LocalFailure("put", "a", "b", kExitUsage))["host"].is_null());
}

}  // namespace
}  // namespace velandoc
