// CClient against the stand-in server: a server that fails at each request in each way, and how
// many connections an open costs.
#include "tests/unit/document/posix/standin_fixture.h"

namespace velandoc::test {
namespace {

class ClientStandIn : public StandInClientTest {
 protected:
  /// A letter for each part that is known: login, user, web, document, content type, list, fields,
  /// row; "-" for each that is not.
  std::string Known() {
    std::string known;
    const auto add = [&known](char letter, bool isKnown) { known += isKnown ? letter : '-'; };
    add('l', !m_client->UserLogin().empty());
    add('u', !m_client->UserName().empty());
    add('w', !m_client->WebPath().empty());
    add('d', !TextOf(&IClient::get_DocID).empty());
    add('c', !TextOf(&IClient::get_ContentTypeID).empty());
    add('i', !TextOf(&IClient::get_ListID).empty());
    add('f', !m_client->Fields().empty());
    add('r', !m_client->ItemAttributes().empty());
    return known;
  }
};

TEST_F(ClientStandIn, AServerThatIsWellTellsEverything) {
  EXPECT_TRUE(Open());
  EXPECT_EQ(Known(), "luwdcifr");
}

struct Way {
  const char* name;
  const char* rule;
};

constexpr Way kWays[] = {
    {"reset", R"({"reset":{"at":"request"}})"},
    {"closed", R"({"close":{"at":"request"}})"},
    {"401 for ever", R"({"auth":{"scheme":"basic","user":"u","password":"p"}})"},
    {"404", R"({"status":404})"},
    {"a fault", R"({"fault":{"status":500,"code":"Server","text":"no"}})"},
    {"a fault as 200", R"({"fault":{"status":200,"code":"Server","text":"no"}})"},
    {"garbage", R"({"respond":{"status":200,"body":"<<no & page"}})"},
    {"empty", R"({"respond":{"status":200,"body":""}})"},
    {"truncated", R"({"truncate":{"length":1000,"sent":10,"body":"<html><body>"}})"},
    {"no HTTP", R"({"garbage":{"count":64,"close":true}})"},
};

struct Request {
  const char* operation;
  const char* head;   // what its head holds
  const char* known;  // what is known if it fails
};

constexpr Request kRequests[] = {
    // This server knows nobody with an empty login.
    {"open service", "POST", "--------"},
    {"GetUserInfo", "POST", "--------"},
    {"url to web url", "POST", "lu------"},
    // The document's request and its folder's differ in length. Without the document's content type
    // or the list the server refuses to tell the columns.
    {"getDocsMetaInfo", "Content-Length: 133", "luw--i--"},
    {"getDocsMetaInfo", "Content-Length: 124", "luwdc---"},
    {"GetListContentType", "POST", "luwdci--"},
    {"GetListItems", "POST", "luwdcif-"},
};

TEST_F(ClientStandIn, AServerThatFailsAtOneRequestTellsTheRest) {
  const EnvironmentScope noInput("VELANDOC_NO_INPUT", "1");
  for (const Request& request : kRequests) {
    for (const Way& way : kWays) {
      SCOPED_TRACE(std::string(request.operation) + " " + request.head + ": " + way.name);
      m_server->SetBehaviour(std::string(R"([{"match":{"operation":")") + request.operation +
                             R"(","head_contains":")" + request.head + R"("},"do":)" + way.rule +
                             "}]");
      Renew();
      const bool isUserKnown = request.known[1] == 'u';
      EXPECT_EQ(Open(), isUserKnown);
      // An answer that is some XML is one without columns, and then the row is asked for.
      const bool isRowAsked = std::string_view(request.operation) == "GetListContentType" &&
                              std::string_view(way.name) == "a fault as 200";
      EXPECT_EQ(Known(), isRowAsked ? "luwdci-r" : request.known);
    }
  }
}

TEST_F(ClientStandIn, OneConnectionServesAWholeOpenAndItsCheckOut) {
  const StandInStats before = m_server->Stats();
  ASSERT_TRUE(Open());
  const StandInStats opened = m_server->Stats();
  EXPECT_EQ(opened.requests - before.requests, 7U);
  EXPECT_EQ(opened.connections - before.connections, 1U);
  VARIANT_BOOL success = 7;
  EXPECT_EQ(m_client->CheckOut(&success), S_OK);
  EXPECT_EQ(success, VARIANT_TRUE);
  const StandInStats checkedOut = m_server->Stats();
  EXPECT_EQ(checkedOut.requests - opened.requests, 2U);
  EXPECT_EQ(checkedOut.connections - opened.connections, 0U);
  // And the next object's.
  Renew();
  ASSERT_TRUE(Open());
  EXPECT_EQ(m_server->Stats().connections, checkedOut.connections);
}

TEST_F(ClientStandIn, AServerThatClosesEachConnectionGetsANewOneEachTime) {
  m_server->SetBehaviour(R"([{"do":{"close":{"at":"body"}}}])");
  const StandInStats before = m_server->Stats();
  EXPECT_FALSE(Open());
  const StandInStats after = m_server->Stats();
  EXPECT_GT(after.requests - before.requests, 1U);
  EXPECT_EQ(after.connections - before.connections, after.requests - before.requests);
}

}  // namespace
}  // namespace velandoc::test
