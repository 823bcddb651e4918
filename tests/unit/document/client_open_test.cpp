// Opening: what is asked, in which order, and what each failure leaves.
#include <gmock/gmock.h>

#include <algorithm>

#include "platform/mfc/module_state.h"
#include "platform/shell.h"
#include "tests/unit/document/client_fixture.h"

namespace velandoc {
namespace {

using testing::Answer;
using testing::ContentTypeAnswer;
using testing::DocumentLines;
using ::testing::ElementsAre;
using testing::FolderLines;
using testing::kDocId;
using testing::kDocumentUrl;
using testing::kListId;
using testing::Page;
using testing::RowAnswer;
using testing::UserInfoAnswer;
using testing::WebUrlLines;

constexpr char kOpened[] =
    "URL: http://docs.example.test/sites/a/Shared/b.xlsx\n"
    "WebURL: http://docs.example.test/sites/a/\n"
    "web path: /sites/a\n"
    "login: EXAMPLE\\jane\n"
    "name: Jane Doe\n"
    "DocID: {5D1F0E3A-6B2C-4A7D-8E90-1F2A3B4C5D6E}\n"
    "ListID: {3F1C7A52-0D5B-4E0A-9B59-6C2F0E4D7A10}\n"
    "ContentTypeID: 0x0101002F\n"
    "meta-info: ContentTypeId vti_etag\n"
    "row: ows_ID='7' ows_Status='Final' ows_Title='Plan'\n"
    "fields: (name='Title' displayName='Title' value='Plan' type='Text' required sourceId='x') "
    "(name='Status' value='Final' type='Choice' choices=['Draft' 'Final'] "
    "sourceId='{3f1c7a52-0d5b-4e0a-9b59-6c2f0e4d7a10}')\n";
constexpr char kNoUser[] = "URL: http://docs.example.test/sites/a/Shared/b.xlsx\n";

class ClientOpen : public testing::ClientTest {
 protected:
  /// Plays only what is asked for.
  void PlayWithout(std::size_t count) {
    auto answers = m_site.InOrder();
    answers.resize(answers.size() - count);
    m_platform.answers.assign(answers.begin(), answers.end());
  }
  bool Init(WideView url = kDocumentUrl) {
    VARIANT_BOOL success = 7;
    EXPECT_EQ(m_client->InitFromURL(Bstr(url).Get(), &success), S_OK);
    return success == VARIANT_TRUE;
  }
};

TEST_F(ClientOpen, SevenRequestsFillTheSession) {
  EXPECT_TRUE(Open());
  EXPECT_EQ(State(), kOpened);
  EXPECT_THAT(Objects(), ElementsAre("docs.example.test:80_vti_bin/_vti_aut/author.dll",
                                     "docs.example.test:80/_vti_bin/usergroup.asmx",
                                     "docs.example.test:80/_vti_bin/shtml.dll/_vti_rpc",
                                     "docs.example.test:80/sites/a/_vti_bin/_vti_aut/author.dll",
                                     "docs.example.test:80/sites/a/_vti_bin/_vti_aut/author.dll",
                                     "docs.example.test:80/sites/a//_vti_bin/lists.asmx",
                                     "docs.example.test:80/sites/a//_vti_bin/lists.asmx"));
  EXPECT_EQ(m_platform.OpenHandles(), 0) << "nothing of HTTP outlives the call";
}

TEST_F(ClientOpen, ColumnsAndRowShareOneConnection) {
  ASSERT_TRUE(Open());
  // One session each: the user's login, his name, the document, the columns with the row. The
  // handle of the request for the columns is not closed before that for the row is opened.
  EXPECT_EQ(m_platform.CallsOf("InternetOpenW").size(), 4U);
  EXPECT_EQ(m_platform.CallsOf("HttpOpenRequestW").size(), 7U);
  const auto& calls = m_platform.calls;
  const auto last = std::find_if(calls.rbegin(), calls.rend(), [](const std::string& call) {
    return call.rfind("HttpOpenRequestW", 0) == 0;
  });
  for (auto call = last + 1; call->rfind("HttpOpenRequestW", 0) != 0; ++call) {
    EXPECT_NE(call->rfind("InternetCloseHandle", 0), 0U) << *call;
  }
}

TEST_F(ClientOpen, AnExplicitPortIsKeptForTheDocumentAndDroppedForTheServer) {
  EXPECT_TRUE(Open(OLESTR("http://docs.example.test:8080/sites/a/Shared/b.xlsx")));
  EXPECT_THAT(Objects(), ElementsAre("docs.example.test:80_vti_bin/_vti_aut/author.dll",
                                     "docs.example.test:80/_vti_bin/usergroup.asmx",
                                     "docs.example.test:8080/_vti_bin/shtml.dll/_vti_rpc",
                                     "docs.example.test:8080/sites/a/_vti_bin/_vti_aut/author.dll",
                                     "docs.example.test:8080/sites/a/_vti_bin/_vti_aut/author.dll",
                                     "docs.example.test:80/sites/a//_vti_bin/lists.asmx",
                                     "docs.example.test:80/sites/a//_vti_bin/lists.asmx"));
  EXPECT_EQ(Text(&IClient::get_URL), "http://docs.example.test:8080/sites/a/Shared/b.xlsx");
  EXPECT_EQ(Text(&IClient::get_WebURL), "http://docs.example.test/sites/a/");
}

TEST_F(ClientOpen, AWebAtTheRootGetsNoSecondSlash) {
  m_site.webUrl = Page(WebUrlLines("/", "Shared/b.xlsx"));
  EXPECT_TRUE(Open());
  EXPECT_EQ(Text(&IClient::get_WebURL), "http://docs.example.test/");
  EXPECT_EQ(m_client->WebPath(), OLESTR("/"));
  EXPECT_EQ(Objects().back(), "docs.example.test:80//_vti_bin/lists.asmx");
}

TEST_F(ClientOpen, AWebBelowTheRootEndsInASlash) {
  m_site.webUrl = Page(WebUrlLines("/sites/a", "Shared/b.xlsx"));
  EXPECT_TRUE(Open());
  EXPECT_EQ(Text(&IClient::get_WebURL), "http://docs.example.test/sites/a/");
  EXPECT_EQ(m_client->WebPath(), OLESTR("/sites/a")) << "as the server gave it";
}

TEST_F(ClientOpen, TheListsServiceIsAskedWithTwoSlashesSideBySide) {
  EXPECT_TRUE(Open());
  EXPECT_EQ(Objects().at(5), "docs.example.test:80/sites/a//_vti_bin/lists.asmx");
  EXPECT_EQ(Objects().at(6), "docs.example.test:80/sites/a//_vti_bin/lists.asmx");
}

TEST_F(ClientOpen, AFailedLoginLookupLeavesTheUrlAlone) {
  PlayWithout(5);
  m_platform.answers[1] = {.status = OLESTR("404")};
  EXPECT_FALSE(Init());
  EXPECT_EQ(State(), kNoUser);
  EXPECT_EQ(Text(&IClient::get_WebURL), "");
}

TEST_F(ClientOpen, AnUnknownLoginGoesOnAsAnEmptyOne) {
  m_site.openService = {.error = 12029};
  EXPECT_TRUE(Open());
  EXPECT_EQ(m_client->UserLogin(), OLESTR(""));
  EXPECT_EQ(m_client->UserName(), OLESTR("Jane Doe"));
  EXPECT_EQ(Text(&IClient::get_DocID), kDocId);
}

TEST_F(ClientOpen, AWebThatIsNotFoundIsASuccessWithoutADocument) {
  auto answers = m_site.InOrder();
  answers[2] = {.status = OLESTR("404")};
  answers.erase(answers.begin() + 3, answers.begin() + 5);
  // The two services are asked all the same, at the root.
  m_platform.answers.assign(answers.begin(), answers.end());
  EXPECT_TRUE(Init());
  EXPECT_EQ(Text(&IClient::get_DocID), "");
  EXPECT_EQ(Text(&IClient::get_ListID), "");
  EXPECT_EQ(Text(&IClient::get_ContentTypeID), "");
  EXPECT_EQ(Text(&IClient::get_WebURL), "http://docs.example.test/");
  EXPECT_EQ(m_client->WebPath(), OLESTR(""));
  EXPECT_EQ(Objects().at(3), "docs.example.test:80//_vti_bin/lists.asmx");
  EXPECT_EQ(Objects().at(4), "docs.example.test:80//_vti_bin/lists.asmx");
}

TEST_F(ClientOpen, AMissingDocumentLeavesItsTextsEmpty) {
  m_site.document = {.status = OLESTR("404")};
  EXPECT_TRUE(Open());
  EXPECT_EQ(Text(&IClient::get_DocID), "");
  EXPECT_EQ(Text(&IClient::get_ContentTypeID), "");
  EXPECT_EQ(Text(&IClient::get_ListID), kListId);
  EXPECT_TRUE(m_client->MetaInfo().m_values.empty());
}

TEST_F(ClientOpen, AMissingFolderLeavesTheListUnknown) {
  m_site.folder = {.error = 12030};
  EXPECT_TRUE(Open());
  EXPECT_EQ(Text(&IClient::get_DocID), kDocId);
  EXPECT_EQ(Text(&IClient::get_ListID), "");
}

TEST_F(ClientOpen, WithoutAContentTypeTheRowIsNotAskedFor) {
  PlayWithout(1);
  m_platform.answers[5] = {.status = OLESTR("500")};
  EXPECT_TRUE(Init());
  EXPECT_EQ(m_client->Fields().size(), 0U);
  EXPECT_EQ(m_client->ItemAttributes().size(), 0U);
  EXPECT_EQ(Objects().size(), 6U);
}

TEST_F(ClientOpen, WithoutColumnsTheRowIsAskedFor) {
  m_site.contentType = ContentTypeAnswer("");
  EXPECT_TRUE(Open());
  EXPECT_EQ(m_client->Fields().size(), 0U);
  EXPECT_EQ(m_client->ItemAttributes().size(), 3U);
}

TEST_F(ClientOpen, WithoutARowTheRecordsKeepWhatTheyHave) {
  m_site.contentType = ContentTypeAnswer("<Field Name='A' Required='TRUE' ows_A='own'/>");
  m_site.row = {.status = OLESTR("404")};
  EXPECT_TRUE(Open());
  EXPECT_EQ(m_client->ItemAttributes().size(), 0U);
  ASSERT_EQ(m_client->Fields().size(), 1U);
  EXPECT_EQ(m_client->Fields().front().m_value, OLESTR("own"));
}

TEST_F(ClientOpen, TheSecondOpenReplacesEverything) {
  ASSERT_TRUE(Open());
  m_site.userInfo = UserInfoAnswer("ID='15' Name='John Roe'");
  m_site.webUrl = Page(WebUrlLines("/", "c.xlsx"));
  m_site.document = Page(DocumentLines("c.xlsx", {{"vti_etag", "SX|{AB},1"}, {"k", "v"}}));
  m_site.folder = Page(FolderLines("", {}));
  m_site.contentType = ContentTypeAnswer("");
  m_site.row = RowAnswer("ows_ID='8'");
  EXPECT_TRUE(Open(OLESTR("http://other.example.test/c.xlsx")));
  EXPECT_EQ(State(),
            "URL: http://other.example.test/c.xlsx\n"
            "WebURL: http://other.example.test/\n"
            "web path: /\n"
            "login: EXAMPLE\\jane\n"
            "name: John Roe\n"
            "DocID: {AB}\n"
            "meta-info: k vti_etag\n"
            "row: ows_ID='8'\n");
}

TEST_F(ClientOpen, AnOpenThatFailsResetsTheSession) {
  ASSERT_TRUE(Open());
  PlayWithout(5);
  m_platform.answers[1] = {.error = 12007};
  EXPECT_FALSE(Init());
  EXPECT_EQ(State(), kNoUser);
}

TEST_F(ClientOpen, ANullUrlIsAnEmptyOne) {
  VARIANT_BOOL success = 7;
  EXPECT_EQ(m_client->InitFromURL(nullptr, &success), S_OK);
  EXPECT_EQ(success, VARIANT_FALSE);
  EXPECT_EQ(State(), "");
  EXPECT_EQ(m_client->InitFromUNC(nullptr, &success), E_FAIL);
}

TEST_F(ClientOpen, AUrlWithoutASchemeIsKeptAndReachesNoServer) {
  EXPECT_FALSE(Init(OLESTR("docs.example.test/b.xlsx")));
  EXPECT_EQ(State(), "URL: docs.example.test/b.xlsx\n");
}

/// `state` without the lines of these members.
std::string Without(std::string state, std::initializer_list<const char*> members) {
  for (const std::string member : members) {
    const std::size_t at = state.find(member + ": ");
    if (at == std::string::npos) return "no line of " + member;
    state.erase(at, state.find('\n', at) + 1 - at);
  }
  return state;
}

std::string Replaced(std::string state, const std::string& what, const std::string& with) {
  const std::size_t at = state.find(what);
  if (at == std::string::npos) return "no " + what;
  return state.replace(at, what.size(), with);
}

// The server fails at each of the seven requests in turn, in each way: only what that request alone
// tells is missing.
TEST_F(ClientOpen, ARequestThatFailsLosesItsOwnPart) {
  for (std::size_t failing = 0; failing < 7; ++failing) {
    for (const Refusal& refusal : Refusals()) {
      SCOPED_TRACE("request " + std::to_string(failing + 1) + ": " + refusal.why);
      Renew();
      m_platform.dialogResults.clear();
      auto answers = m_site.InOrder();
      answers[failing] = refusal.answer;
      const bool arrived = refusal.answer.error == 0 && refusal.answer.readError == 0 &&
                           refusal.answer.status == OLESTR("200");
      const std::string body = refusal.answer.chunks.empty() ? "" : refusal.answer.chunks.front();
      const bool isXml =
          arrived && body.find("</") != std::string::npos && body.find("<br>") == std::string::npos;
      std::string expected = kOpened;
      std::size_t unasked = 0;
      switch (failing) {
        case 0:
          expected = Without(expected, {"login"});
          break;
        case 1:
          expected = kNoUser;
          unasked = 5;
          break;
        case 2:
          expected = Replaced(Without(expected, {"web path"}), "/sites/a/\n", "/\n");
          if (!arrived) {
            // The web is not known, so the document is not asked for; the services still are.
            answers.erase(answers.begin() + 3, answers.begin() + 5);
            expected = Without(expected, {"DocID", "ListID", "ContentTypeID", "meta-info"});
          }
          break;
        case 3:
          expected = Without(expected, {"DocID", "ContentTypeID", "meta-info"});
          break;
        case 4:
          expected = Without(expected, {"ListID"});
          break;
        case 5:
          // A body that is some XML has no columns, which is an answer.
          expected = Without(expected, {"fields"});
          if (!isXml) {
            expected = Without(expected, {"row"});
            unasked = 1;
          }
          break;
        default:
          expected = Replaced(Replaced(Without(expected, {"row"}), " value='Plan'", ""),
                              " value='Final'", "");
      }
      // Without a list's id no column counts as made for the list.
      if (failing == 4 || (failing == 2 && !arrived)) {
        expected.erase(expected.find(" (name='Status'"));
        expected += "\n";
      }
      if (refusal.answer.status == OLESTR("401")) {
        // The user gives credentials again and again.
        answers.insert(answers.begin() + static_cast<std::ptrdiff_t>(failing), 3, refusal.answer);
        m_platform.dialogResults.assign(failing, 0);
        m_platform.dialogResults.insert(m_platform.dialogResults.end(), 3,
                                        ERROR_INTERNET_FORCE_RETRY);
      }
      m_platform.answers.assign(answers.begin(), answers.end());
      EXPECT_EQ(Init(), failing != 1);
      EXPECT_EQ(m_platform.answers.size(), unasked) << "requests that were not made";
      EXPECT_EQ(State(), expected);
      EXPECT_EQ(m_platform.OpenHandles(), 0);
      m_platform.answers.clear();
    }
  }
}

class FixedShell final : public Shell {
 public:
  int _wsplitpath_s(LPCWSTR path, LPWSTR drive, std::size_t driveSize, LPWSTR folder,
                    std::size_t folderSize, LPWSTR name, std::size_t nameSize, LPWSTR extension,
                    std::size_t extensionSize) override {
    return SystemPort<Shell>()._wsplitpath_s(path, drive, driveSize, folder, folderSize, name,
                                             nameSize, extension, extensionSize);
  }
  DWORD WNetGetConnectionW(LPCWSTR, LPWSTR, DWORD*) override { return 2250; }
  DWORD DavGetHTTPFromUNCPath(LPCWSTR, LPWSTR buffer, DWORD*) override {
    std::copy(url.begin(), url.end(), buffer);
    return url.empty() ? 87 : 0;
  }
  BOOL SHGetSpecialFolderPathW(HWND, LPWSTR, int, BOOL) override { return FALSE; }
  WideString url;
};

TEST_F(ClientOpen, APathIsOpenedByItsUrl) {
  FixedShell shell;
  shell.url = kDocumentUrl;
  const PortScope<Shell> scope(shell);
  const auto answers = m_site.InOrder();
  m_platform.answers.assign(answers.begin(), answers.end());
  VARIANT_BOOL success = 7;
  EXPECT_EQ(m_client->InitFromUNC(Bstr(OLESTR("\\\\s\\a")).Get(), &success), S_OK);
  EXPECT_EQ(success, VARIANT_TRUE);
  EXPECT_EQ(State(), kOpened) << "URL answers with the URL, not with the path";
}

TEST_F(ClientOpen, APathThatMapsToNothingLeavesTheEarlierDocumentOpen) {
  ASSERT_TRUE(Open());
  FixedShell shell;
  const PortScope<Shell> scope(shell);
  VARIANT_BOOL success = 7;
  EXPECT_EQ(m_client->InitFromUNC(Bstr(OLESTR("C:\\a.xlsx")).Get(), &success), E_FAIL);
  EXPECT_EQ(success, 7) << "unwritten";
  EXPECT_EQ(State(), kOpened);
}

/// Notes which of its own operations are reached through the virtual table.
class WatchedClient : public CClient {
 public:
  STDMETHODIMP InitFromURL(BSTR URLPath, VARIANT_BOOL* Success) override {
    opened.emplace_back(URLPath);
    *Success = VARIANT_TRUE;
    return S_FALSE;
  }
  std::vector<WideString> opened;

 protected:
  ~WatchedClient() = default;
};

TEST_F(ClientOpen, InitFromUNCCallsInitFromURLThroughTheVirtualTable) {
  FixedShell shell;
  shell.url = kDocumentUrl;
  const PortScope<Shell> scope(shell);
  CComObject<WatchedClient>* made = nullptr;
  ASSERT_EQ(CComObject<WatchedClient>::CreateInstance(&made), S_OK);
  const ComPtr<WatchedClient> client(made);
  VARIANT_BOOL success = 7;
  EXPECT_EQ(client->InitFromUNC(Bstr(OLESTR("\\\\s\\a")).Get(), &success), S_FALSE);
  EXPECT_THAT(client->opened, ElementsAre(WideString(kDocumentUrl)));
}

// Notes the module state of whoever asks the platform.
class StateWatcher final : public testing::ScriptedWinInet {
 public:
  HWND GetActiveWindow() override {
    state = AfxGetModuleState();
    return ScriptedWinInet::GetActiveWindow();
  }
  AFX_MODULE_STATE* state = nullptr;
};

TEST_F(ClientOpen, OpeningStandsWithinTheModuleState) {
  StateWatcher platform;
  platform.closesChildren = true;
  const auto answers = m_site.InOrder();
  platform.answers.assign(answers.begin(), answers.end());
  const PortScope<WinInet> scope(platform);
  AFX_MODULE_STATE* const outside = AfxGetModuleState();
  ASSERT_NE(outside, AfxGetStaticModuleState());
  EXPECT_TRUE(Init());
  EXPECT_EQ(platform.state, AfxGetStaticModuleState());
  EXPECT_EQ(AfxGetModuleState(), outside);
}

}  // namespace
}  // namespace velandoc
