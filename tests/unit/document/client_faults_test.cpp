// A whole open and a whole check-out in which each call of a service fails once: what the caller
// sees, and that nothing stays behind.
#include <cstring>

#include "platform/code_page.h"
#include "tests/support/fault_code_page.h"
#include "tests/support/fault_wininet.h"
#include "tests/unit/document/client_fixture.h"

namespace velandoc {
namespace {

using testing::Answer;
using testing::FaultCodePage;
using testing::FaultDom;
using testing::FaultWinInet;
using testing::kDocumentUrl;
using testing::kService;
using testing::OutcomeOf;

/// Answers by what is asked, so that a request that is not sent keeps no other from its answer.
class ServingWinInet final : public testing::ScriptedWinInet {
 public:
  BOOL HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                        DWORD optionalLength) override {
    const std::string body(static_cast<const char*>(optional), optionalLength);
    for (const auto& [mark, answer] : served) {
      if (body.find(mark) == std::string::npos) continue;
      answers = {answer};
      break;
    }
    return ScriptedWinInet::HttpSendRequestW(request, headers, headersLength, optional,
                                             optionalLength);
  }

  /// What a body holds, and its answer; the first that fits counts.
  std::vector<std::pair<std::string, Answer>> served;
};

class ClientFaults : public testing::ClientTest {
 protected:
  ClientFaults() {
    m_server.closesChildren = true;
    m_server.served = {
        {"method=open+service", m_site.openService},
        {"<GetUserInfo", m_site.userInfo},
        {"method=url+to+web+url", m_site.webUrl},
        {"b.xlsx%5d", m_site.document},
        {"method=getDocsMetaInfo", m_site.folder},
        {"<GetListContentType", m_site.contentType},
        {"<GetListItems", m_site.row},
        {"<WebUrlFromPageUrl",
         Xml(Envelope(std::string("<WebUrlFromPageUrlResponse xmlns='") + kService +
                      "'>http://docs.example.test/sites/a</WebUrlFromPageUrlResponse>"))},
        {"<CheckOutFile", Xml(Envelope(std::string("<CheckOutFileResponse xmlns='") + kService +
                                       "'><CheckOutFileResult>true</CheckOutFileResult>"
                                       "</CheckOutFileResponse>"))},
        // What could not be converted goes out empty.
        {"", {.status = OLESTR("400")}},
    };
  }

  /// "ok" if the document is open with all it has, else what is missing first.
  std::string OpenNew() {
    Renew();
    VARIANT_BOOL success = 7;
    if (m_client->InitFromURL(Bstr(WideView(kDocumentUrl)).Get(), &success) != S_OK) {
      return "a result";
    }
    if (success != VARIANT_TRUE) return "no user";
    if (m_client->UserLogin().empty()) return "no login";
    if (Text(&IClient::get_DocID).empty()) return "no document";
    if (Text(&IClient::get_ContentTypeID).empty()) return "no content type";
    if (Text(&IClient::get_ListID).empty()) return "no list";
    if (m_client->Fields().size() != 2) return "no fields";
    if (m_client->ItemAttributes().empty()) return "no row";
    for (const CFieldRecord& field : m_client->Fields()) {
      if (field.m_value.empty() || field.m_type.empty()) return "half a field";
      if (field.m_type == OLESTR("Choice") && field.m_choices.size() != 2) return "half a field";
    }
    return "ok";
  }
  std::string CheckOut() {
    VARIANT_BOOL success = 7;
    if (m_client->CheckOut(&success) != S_OK) return "a result";
    return success == VARIANT_TRUE ? "ok" : "false";
  }

  /// Runs `operation` with the N-th call failing, for every N; the outcomes in order, equal
  /// neighbours counted. `make` gives N and runs it with the fault in place, and returns how many
  /// calls there were.
  std::string Outcomes(const std::function<int(int, std::string&)>& run) {
    std::string text;
    std::string last;
    int count = 0;
    const auto flush = [&] {
      if (count != 0) text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + last;
      count = 0;
    };
    std::string outcome;
    const int calls = run(0, outcome);
    EXPECT_EQ(outcome, "ok");
    for (int failAt = 1; failAt <= calls; ++failAt) {
      SCOPED_TRACE(failAt);
      run(failAt, outcome);
      EXPECT_EQ(m_server.OpenHandles(), 0);
      m_server.answers.clear();
      if (outcome != last) flush();
      last = outcome;
      ++count;
    }
    flush();
    return text;
  }
  std::string NetworkOutcomes(const std::function<std::string()>& operation) {
    return Outcomes([&](int failAt, std::string& outcome) {
      FaultWinInet fault(m_server, failAt, 12030);
      const PortScope<WinInet> scope(fault);
      outcome = OutcomeOf(operation);
      return fault.Count();
    });
  }
  std::string ConversionOutcomes(const std::function<std::string()>& operation) {
    const PortScope<WinInet> server(m_server);
    return Outcomes([&](int failAt, std::string& outcome) {
      FaultCodePage fault(SystemPort<CodePage>(), failAt);
      const PortScope<CodePage> scope(fault);
      outcome = OutcomeOf(operation);
      return fault.Count();
    });
  }
  std::string DomOutcomes(const std::function<std::string()>& operation) {
    const PortScope<WinInet> server(m_server);
    return Outcomes([&](int failAt, std::string& outcome) {
      FaultDom fault(failAt, E_UNEXPECTED);
      outcome = OutcomeOf(operation);
      EXPECT_EQ(fault.alive, 0);
      return fault.Count();
    });
  }
  std::function<std::string()> Opening() {
    return [this] { return OpenNew(); };
  }
  /// Of a document that was opened with no fault.
  std::function<std::string()> CheckingOut() {
    const PortScope<WinInet> server(m_server);
    EXPECT_EQ(OpenNew(), "ok");
    return [this] { return CheckOut(); };
  }

  ServingWinInet m_server;
};

// Of each request its part is missing, as far as it was not read; InternetErrorDlg and a status
// that is asked for again do no harm.
TEST_F(ClientFaults, AnOpenWithEachCallOfTheNetworkFailing) {
  EXPECT_EQ(NetworkOutcomes(Opening()),
            "4 no login, 2 ok, 3 no login, 4 no user, 2 ok, 3 no user, 4 no "
            "document, 2 ok, 5 no document, 2 ok, 3 no document, 2 no list, 2 ok, 3 "
            "no list, 4 no fields, 2 ok, 3 no fields, 2 no row, 2 ok, 3 no row");
}

TEST_F(ClientFaults, AnOpenWithEachConversionFailing) {
  EXPECT_EQ(ConversionOutcomes(Opening()),
            "3 no login, 3 no user, 5 no document, 2 no list, 3 no fields, 2 no row");
}

// What the DOM fails at before an answer came leaves InitFromURL as an exception, except where the
// fields are asked for. The many that do no harm build the fragments of the question for the row:
// it goes out without the one that failed, and this server does not mind.
TEST_F(ClientFaults, AnOpenWithEachCallOfTheDomFailing) {
  EXPECT_EQ(DomOutcomes(Opening()),
            "2 no login, 1 raised, 1 no login, 8 raised, 6 raised E_POINTER, 6 "
            "raised, 2 no user, 1 raised, 1 no user, 1 raised, 7 no user, 2 no "
            "document, 1 raised, 1 no document, 8 raised, 2 no document, 1 raised, "
            "1 no document, 16 raised, 2 no list, 1 raised, 1 no list, 12 raised, "
            "23 no fields, 9 half a field, 8 ok, 1 no fields, 19 half a field, 6 "
            "raised E_POINTER, 5 raised, 122 ok, 1 raised, 2 no row, 1 raised, 1 no "
            "row, 1 raised, 13 no row");
}

TEST_F(ClientFaults, ACheckOutWithEachCallOfTheNetworkFailing) {
  EXPECT_EQ(NetworkOutcomes(CheckingOut()), "4 false, 2 ok, 7 false, 2 ok, 3 false");
}

TEST_F(ClientFaults, ACheckOutWithEachConversionFailing) {
  EXPECT_EQ(ConversionOutcomes(CheckingOut()), "6 false");
}

TEST_F(ClientFaults, ACheckOutWithEachCallOfTheDomFailing) {
  EXPECT_EQ(DomOutcomes(CheckingOut()),
            "6 raised E_POINTER, 6 raised, 2 false, 1 raised, 1 false, 1 raised, 2 "
            "false, 6 raised E_POINTER, 9 raised, 2 false, 1 raised, 1 false, 1 "
            "raised, 2 false");
}

}  // namespace
}  // namespace velandoc
