// What both HDFS clients put on the wire, and what their hosts see of the answers: the same cases
// for both, against the stand-in's name node and data node, in both homes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <thread>

#include "hdfs/hdfs_client.h"
#include "hdfs/hdfs_client_winhttp.h"
#include "host/velandoc_module.h"
#include "tests/support/standin_client.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text_stream.h"
#include "tests/support/thread_error.h"
#include "tests/support/variant_text.h"

namespace velandoc::test {
namespace {

using testing::DescribeText;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::TemporaryFolder;
using testing::TextStream;

std::string ReadFile(const std::filesystem::path& path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

#ifdef _WIN32
constexpr bool kIsLinux = false;
#else
constexpr bool kIsLinux = true;
#endif

struct Form {
  const char* name;
  const char* agent;
  HRESULT (*create)(IUnknown* outer, REFIID riid, void** object);
};

constexpr Form kForms[] = {
    {"WinInet", "CWinInetConnection", &CHdfsClient::CreateObject},
    {"WinHttp", "CWinHttpConnection", &CHdfsClientWinHttp::CreateObject},
};

class HdfsWireTest : public ::testing::TestWithParam<Form> {
 protected:
  void SetUp() override {
    if (!StandIn::IsAvailable()) GTEST_SKIP() << "VELANDOC_STANDIN names no server";
    m_server.emplace();
    m_scope.emplace(*m_server);
    EXPECT_EQ(Module().GetLockCount(), 0);
    Renew();
  }
  void TearDown() override {
    m_client.Reset();
    EXPECT_EQ(Module().GetLockCount(), 0);
    SetErrorInfo(0, nullptr);
  }

  bool IsWinHttp() const { return GetParam().create == &CHdfsClientWinHttp::CreateObject; }

  std::string Host() const { return "127.0.0.1:" + std::to_string(m_server->HttpPort()); }
  std::string Url(const std::string& pathAndQuery) const {
    return "http://" + Host() + pathAndQuery;
  }
  /// A fresh client of the form for /u/a b-c.txt and the user bob.
  void Renew() {
    ASSERT_EQ(GetParam().create(nullptr, IID_IHdfsClient, m_client.ReceiveVoid()), S_OK);
    const std::string url = Url("/");
    ASSERT_EQ(m_client->put_BaseUrl(Bstr(WideString(url.begin(), url.end())).Get()), S_OK);
    m_client->put_HdfsPath(Bstr(OLESTR("/u/a b-c.txt")).Get());
    m_client->put_UserName(Bstr(OLESTR("bob")).Get());
  }
  HRESULT Upload(const std::string& content, LPCOLESTR permissions = OLESTR("")) {
    TextStream stream(content);
    VARIANT source;
    VariantInit(&source);
    source.vt = VT_UNKNOWN;
    source.punkVal = &stream;
    return m_client->Upload(source, VARIANT_TRUE, Bstr(permissions).Get());
  }
  /// Puts a file there and forgets how.
  void Put(const std::string& content) {
    ASSERT_EQ(Upload(content), S_OK);
    Renew();
    m_server->ClearLog();
  }
  std::string GetText() {
    Bstr text;
    const HRESULT result = m_client->GetText(text.Receive());
    return result == S_OK ? DescribeText(text.View()) : testing::DescribeResult(result);
  }
  /// "code message"
  std::string Error() {
    ComPtr<IConnectionError> error;
    EXPECT_EQ(m_client->get_ConnectionError(error.Receive()), S_OK);
    LONG code = -1;
    Bstr message;
    error->get_HttpCode(&code);
    error->get_Message(message.Receive());
    return std::to_string(code) + " " + DescribeText(message.View());
  }

  /// The log once it has `count` records; what it has after 20 seconds if it never does. For
  /// requests whose client does not wait for the answer.
  std::vector<StandInRequest> LogOf(std::size_t count) const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    for (;;) {
      std::vector<StandInRequest> log = m_server->Log();
      if (log.size() >= count || std::chrono::steady_clock::now() > deadline) return log;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  }
  /// "role VERB target" of each request, with what a redirect adds cut off.
  std::vector<std::string> Requests() const {
    std::vector<std::string> found;
    for (const StandInRequest& request : m_server->Log()) {
      std::string target = request.target;
      const std::size_t added = target.find("namenoderpcaddress=");
      if (added != std::string::npos) target.resize(added - 1);
      found.push_back(request.role + ": " + request.method + " " + target);
    }
    return found;
  }
  /// The head of the request of that number, from 0.
  std::string Head(std::size_t number) const {
    const auto log = m_server->Log();
    if (number >= log.size()) return "none";
    std::string head = log[number].head;
#ifdef _WIN32
    // WinINet keeps cookies and credentials for the process; other tests leave some behind.
    for (const char* kept : {"\r\nCookie: ", "\r\nAuthorization: "}) {
      const std::size_t begin = head.find(kept);
      if (begin != std::string::npos) head.erase(begin, head.find("\r\n", begin + 2) - begin);
    }
#endif
    return head;
  }
  /// The bytes of a name node's request, which has no body; `length` is "Content-Length: 0" or
  /// empty. Each library has an order of its own.
  std::string Sent(const std::string& line, const std::string& length = "") const {
    const std::string host = "Host: " + Host() + "\r\n";
    const std::string agent = std::string("User-Agent: ") + GetParam().agent + "\r\n";
    const std::string own = length.empty() ? "" : length + "\r\n";
    return line + " HTTP/1.1\r\nAccept: text/*, application/json\r\n" +
           (IsWinHttp() ? agent + host + own : host + own + agent) +
           "Connection: Keep-Alive\r\n\r\n";
  }

  /// WinINet tells the length of a DELETE that has no body.
  std::string OfDelete() const { return IsWinHttp() ? "" : "Content-Length: 0"; }

  std::optional<StandIn> m_server;
  std::optional<StandInScope> m_scope;
  ComPtr<IHdfsClient> m_client;
};

INSTANTIATE_TEST_SUITE_P(BothForms, HdfsWireTest, ::testing::ValuesIn(kForms),
                         [](const auto& form) { return std::string(form.param.name); });

const std::string kPath = " /webhdfs/v1/u/a%20b%2dc.txt?op=";
const std::string kNoBody = "Content-Length: 0";
constexpr VARIANT_BOOL kUnwritten = 77;

TEST_P(HdfsWireTest, ABodyIsAskedForAndTheRedirectFollowed) {
  Put("hello");
  EXPECT_EQ(GetText(), "hello");
  EXPECT_EQ(Head(0), Sent("GET" + kPath + "OPEN&user.name=bob"));
  EXPECT_THAT(Requests(),
              ElementsAre("name node: GET" + kPath + "OPEN&user.name=bob",
                          "data node: GET /webhdfs/v1/u/a%20b-c.txt?op=OPEN&user.name=bob"));
  EXPECT_EQ(Error(), "200 ");
}

TEST_P(HdfsWireTest, DownloadPreviewAndStreamAskAlike) {
  Put("one\r\ntwo\r\nthree");
  const TemporaryFolder folder;
  const std::string narrow = (folder.Path() / "copy").string();
  Bstr saved;
  EXPECT_EQ(m_client->Download(VARIANT_FALSE, Bstr(WideString(narrow.begin(), narrow.end())).Get(),
                               saved.Receive()),
            S_OK);
  EXPECT_EQ(ReadFile(folder.Path() / "copy"), "one\r\ntwo\r\nthree");
  EXPECT_EQ(m_client->DownloadPreview(2, saved.Receive()), S_OK);
  const std::filesystem::path preview(saved.Text());
  EXPECT_EQ(ReadFile(preview), "\xEF\xBB\xBFone\r\ntwo");
  std::filesystem::remove(preview);
  ComPtr<IStream> stream;
  EXPECT_EQ(m_client->Stream(stream.Receive()), S_OK);
  for (const std::size_t number : {0U, 2U, 4U}) {
    EXPECT_EQ(Head(number), Sent("GET" + kPath + "OPEN&user.name=bob"));
  }
  EXPECT_EQ(Requests().size(), 6U);
}

TEST_P(HdfsWireTest, AServerIsVerified) {
  m_client->put_Op(Bstr(OLESTR("GETHOMEDIRECTORY")).Get());
  VARIANT_BOOL found = kUnwritten;
  const std::string url = Url("/");
  EXPECT_EQ(m_client->VerifyServer(Bstr(WideString(url.begin(), url.end())).Get(),
                                   Variant(OLESTR("ann")).Get(), &found),
            S_OK);
  EXPECT_EQ(found, VARIANT_TRUE);
  EXPECT_EQ(m_server->Log().size(), 1U);
  // The second class sends what its own properties say.
  const std::string user = IsWinHttp() ? "bob" : "ann";
  EXPECT_EQ(Head(0), Sent("GET" + kPath + "GETHOMEDIRECTORY&user.name=" + user));
}

TEST_P(HdfsWireTest, AnUploadTakesTwoRequestsWithoutBeingLedOn) {
  EXPECT_EQ(Upload("hello", OLESTR("755")), S_OK);
  EXPECT_EQ(Head(0),
            Sent("PUT" + kPath + "CREATE&user.name=bob&overwrite=true&permission=755", kNoBody));
  EXPECT_THAT(
      Requests(),
      ElementsAre("name node: PUT" + kPath + "CREATE&user.name=bob&overwrite=true&permission=755",
                  "data node: PUT /webhdfs/v1/u/a%20b-c.txt?op=CREATE&user.name=bob"));
  const auto log = m_server->Log();
  ASSERT_EQ(log.size(), 2U);
  EXPECT_EQ(log[0].body, "");
  EXPECT_EQ(log[1].body, "hello");
  EXPECT_NE(log[1].head.find("\r\nContent-Length: 5\r\n"), std::string::npos);
  EXPECT_EQ(log[1].head.find("\r\nCache-Control: no-cache\r\n") == std::string::npos, IsWinHttp());
  // Only a failure keeps the answer's text, and to the first class a 307 is one. It has none here.
  EXPECT_EQ(Error(), "307 ");
  EXPECT_FALSE(testing::TakeThreadError().isThere);
}

TEST_P(HdfsWireTest, AnUploadThatMayNotOverwriteSaysSo) {
  Put("older");
  VARIANT source;
  VariantInit(&source);
  TextStream stream("newer");
  source.vt = VT_UNKNOWN;
  source.punkVal = &stream;
  EXPECT_EQ(m_client->Upload(source, VARIANT_FALSE, nullptr), E_FAIL);
  EXPECT_EQ(Head(0), Sent("PUT" + kPath + "CREATE&user.name=bob&overwrite=false", kNoBody));
  const testing::ThreadError error = testing::TakeThreadError();
  EXPECT_EQ(error.source, "HDFS Client Upload");
  EXPECT_THAT(error.description, HasSubstr("FileAlreadyExistsException"));
  EXPECT_EQ(Error(), "0 " + error.description) << "the data node refused";
}

TEST_P(HdfsWireTest, ADeleteBehindAnUploadIsToldByTheForm) {
  EXPECT_EQ(Upload("hello", OLESTR("755")), S_OK);
  m_server->ClearLog();
  VARIANT_BOOL success = kUnwritten;
  EXPECT_EQ(m_client->Delete(VARIANT_FALSE, &success), S_OK);
  EXPECT_EQ(success, VARIANT_TRUE);
  EXPECT_EQ(m_server->Log().size(), 1U);
  EXPECT_EQ(Head(0),
            Sent("DELETE" + kPath + "DELETE&user.name=bob" +
                     (IsWinHttp() ? "&overwrite=true&permission=755" : "") + "&recursive=false",
                 OfDelete()));
}

TEST_P(HdfsWireTest, ADeleteWithAllInItSaysSo) {
  Put("hello");
  m_client->put_HdfsPath(Bstr(OLESTR("/u")).Get());
  VARIANT_BOOL success = kUnwritten;
  EXPECT_EQ(m_client->Delete(VARIANT_TRUE, &success), S_OK);
  EXPECT_EQ(success, VARIANT_TRUE);
  EXPECT_EQ(Head(0),
            Sent("DELETE /webhdfs/v1/u?op=DELETE&user.name=bob&recursive=true", OfDelete()));
}

TEST_P(HdfsWireTest, ARenameSendsTheNewName) {
  Put("hello");
  VARIANT_BOOL success = kUnwritten;
  EXPECT_EQ(m_client->Rename(Bstr(OLESTR("/u/d-e f.txt")).Get(), &success), S_OK);
  EXPECT_EQ(success, VARIANT_TRUE);
  EXPECT_EQ(Head(0),
            Sent("PUT" + kPath + "RENAME&user.name=bob&destination=/u/d%2de%20f.txt", kNoBody));
  Renew();
  m_client->put_HdfsPath(Bstr(OLESTR("/u/d-e f.txt")).Get());
  EXPECT_EQ(GetText(), "hello");
}

// The name is read as ANSI text in between, and the second class has its characters encoded once
// more.
TEST_P(HdfsWireTest, ARenameToANameBeyondAsciiGivesAnother) {
  Put("hello");
  EXPECT_EQ(m_client->Rename(Bstr(OLESTR("/u/\u00e9")).Get(), nullptr), S_OK);
  const std::string name = IsWinHttp() ? "%C3%83%C2%83%C3%82%C2%A9" : "\xC3\xA9";
  EXPECT_EQ(Head(0), Sent("PUT" + kPath + "RENAME&user.name=bob&destination=/u/" + name, kNoBody));
}

TEST_P(HdfsWireTest, AFolderIsMadeByOneFormAlone) {
  m_client->put_HdfsPath(Bstr(OLESTR("/u/new")).Get());
  VARIANT_BOOL success = kUnwritten;
  EXPECT_EQ(m_client->CreateFolder(Bstr(OLESTR("750")).Get(), &success), S_OK);
  const std::string target = " /webhdfs/v1/u/new?op=MKDIRS&user.name=bob&permission=";
  if (IsWinHttp()) {
    EXPECT_EQ(success, VARIANT_FALSE);
    EXPECT_EQ(Head(0), Sent("GET" + target + "750"));
    EXPECT_EQ(Error(), "400 ") << "a name node makes no folder for a GET";
    EXPECT_EQ(m_client->CreateFolder(nullptr, &success), S_OK);
    EXPECT_EQ(Head(1), Sent("GET" + target));
  } else {
    EXPECT_EQ(success, VARIANT_TRUE);
    EXPECT_EQ(Head(0), Sent("PUT" + target + "750", kNoBody));
    EXPECT_EQ(m_client->CreateFolder(nullptr, &success), S_OK);
    EXPECT_EQ(Head(1), Sent("PUT /webhdfs/v1/u/new?op=MKDIRS&user.name=bob", kNoBody));
  }
}

TEST_P(HdfsWireTest, ARawRequestGoesToAnyUrl) {
  ComPtr<IRawRequest> raw;
  const HRESULT found = m_client->QueryInterface(IID_IRawRequest, raw.ReceiveVoid());
  EXPECT_EQ(found, IsWinHttp() ? E_NOINTERFACE : S_OK);
  if (FAILED(found)) return;
  const std::string url = Url("/bytes/3?x=1");
  Bstr text;
  EXPECT_EQ(raw->Request(Bstr(WideString(url.begin(), url.end())).Get(), text.Receive()), S_OK);
  EXPECT_EQ(Head(0), Sent("GET /bytes/3?x=1"));
}

TEST_P(HdfsWireTest, WithoutAUserNoneIsNamedAndABlankInOneGoesOut) {
  m_client->put_UserName(nullptr);
  GetText();
  m_client->put_UserName(Bstr(OLESTR("bob smith")).Get());
  GetText();
  EXPECT_EQ(Head(0), Sent("GET" + kPath + "OPEN"));
  EXPECT_EQ(Head(1), Sent("GET" + kPath + "OPEN&user.name=bob%20smith"));
}

TEST_P(HdfsWireTest, AMissingPathIsAFailureInOneFormAndTextInTheOther) {
  const std::string text = GetText();
  const testing::ThreadError error = testing::TakeThreadError();
  const std::string words = "FileNotFoundException";
  if (IsWinHttp()) {
    EXPECT_THAT(text, HasSubstr(words));
    EXPECT_FALSE(error.isThere);
    EXPECT_EQ(Error(), "404 ");
  } else {
    EXPECT_EQ(text, testing::DescribeResult(E_FAIL));
    EXPECT_EQ(error.source, "HDFS Client Connect");
    EXPECT_THAT(error.description, HasSubstr(words));
    EXPECT_EQ(Error(), "404 " + error.description);
  }
}

TEST_P(HdfsWireTest, ANameNodesRefusalOfAnUploadIsAFailureInOneFormAlone) {
  m_server->SetBehaviour(R"([{"match": {"operation": "CREATE"}, "do": {"status": 403}}])");
  EXPECT_EQ(Upload("hello"), IsWinHttp() ? S_OK : E_FAIL);
  EXPECT_EQ(m_server->Log().size(), 1U);
  EXPECT_EQ(Error().substr(0, 4), "403 ");
}

TEST_P(HdfsWireTest, AStreamReadTwiceGivesTheSameBytes) {
  Put("hello");
  ComPtr<IStream> stream;
  ASSERT_EQ(m_client->Stream(stream.Receive()), S_OK);
  for (int round = 0; round < 2; ++round) {
    char buffer[10];
    ULONG read = 0;
    EXPECT_EQ(stream->Read(buffer, sizeof buffer, &read), S_FALSE);
    EXPECT_EQ(std::string(buffer, read), "hello");
    EXPECT_EQ(stream->Read(buffer, sizeof buffer, &read), S_FALSE);
    EXPECT_EQ(read, 0U);
    EXPECT_EQ(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr), S_OK);
  }
}

// A stream of Stream does not tell its length, so an upload of it is announced as empty. What goes
// beyond that is written all the same; only WinHTTP of Linux refuses it.
TEST_P(HdfsWireTest, AStreamGivenToUploadIsAnnouncedAsEmpty) {
  Put("hello");
  ComPtr<IStream> stream;
  ASSERT_EQ(m_client->Stream(stream.Receive()), S_OK);
  m_client->put_HdfsPath(Bstr(OLESTR("/u/copy.txt")).Get());
  VARIANT source;
  VariantInit(&source);
  source.vt = VT_UNKNOWN;
  source.punkVal = stream.Get();
  const HRESULT result = m_client->Upload(source, VARIANT_TRUE, nullptr);
  EXPECT_EQ(result, IsWinHttp() && kIsLinux ? E_FAIL : S_OK);
  // Who refuses it does not wait for the answer. The server makes the file before it logs.
  const auto log = LogOf(4);
  ASSERT_EQ(log.size(), 4U);
  EXPECT_EQ(log[3].role, "data node");
  EXPECT_EQ(log[3].method, "PUT");
  EXPECT_THAT(log[3].head, HasSubstr("\r\nContent-Length: 0\r\n"));
  EXPECT_EQ(log[3].body, "");
  char buffer[10];
  ULONG read = 0;
  EXPECT_EQ(stream->Read(buffer, sizeof buffer, &read), S_FALSE);
  EXPECT_EQ(read, 0U) << "it was read to its end";
  Renew();
  m_client->put_HdfsPath(Bstr(OLESTR("/u/copy.txt")).Get());
  EXPECT_EQ(GetText(), "") << "made, and empty";
}

}  // namespace
}  // namespace velandoc::test
