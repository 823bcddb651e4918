// What the WinInet port puts on the wire and what its caller sees, one case each, for both homes:
// on Windows it is the system's WinINet. Where the homes differ, the difference stands in the case,
// in `windows`, with its reason.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/scripted_peer.h"
#include "tests/support/wininet_exchange.h"

namespace velandoc::test {
namespace {

#ifdef _WIN32
constexpr bool kIsWindows = true;
#else
constexpr bool kIsWindows = false;
#endif

/// Puts the peer's address in the place of "HOST".
std::string WithHost(std::string_view pattern, const ScriptedPeer& peer) {
  std::string text(pattern);
  const std::string host = "127.0.0.1:" + std::to_string(peer.Port());
  for (std::size_t at = text.find("HOST"); at != std::string::npos; at = text.find("HOST")) {
    text.replace(at, 4, host);
  }
  return text;
}

struct WireCase {
  const char* name;
  LPCWSTR verb;
  LPCWSTR objectName;
  DWORD flags;
  LPCWSTR headers;
  const char* body;
  const char* request;
  // Empty: as `request`.
  const char* windows = "";
};

constexpr WireCase kWireCases[] = {
    {"A SOAP call", OLESTR("POST"), OLESTR("/_vti_bin/lists.asmx"), kUsualFlags,
     OLESTR("Content-Type: text/xml; charset=utf-8\nSOAPAction: x"), "<a/>",
     "POST /_vti_bin/lists.asmx HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\nContent-Length: 4\r\n"
     "User-Agent: CWinInetConnection\r\nContent-Type: text/xml; charset=utf-8\r\nSOAPAction: x\r\n"
     "Connection: Keep-Alive\r\n\r\n<a/>"},
    {"A GET has no length", OLESTR("GET"), OLESTR("/a"), kUsualFlags, OLESTR(""), "",
     "GET /a HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\nUser-Agent: CWinInetConnection\r\n"
     "Connection: Keep-Alive\r\n\r\n"},
    {"An empty name becomes a slash, an empty PUT tells its length", OLESTR("PUT"), OLESTR(""),
     kUsualFlags, OLESTR(""), "",
     "PUT / HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\nContent-Length: 0\r\n"
     "User-Agent: CWinInetConnection\r\nConnection: Keep-Alive\r\n\r\n"},
    {"An extra info alone follows the added slash", OLESTR("DELETE"), OLESTR("?op=DELETE"),
     kUsualFlags, OLESTR(""), "",
     "DELETE /?op=DELETE HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\nContent-Length: 0\r\n"
     "User-Agent: CWinInetConnection\r\nConnection: Keep-Alive\r\n\r\n"},
    {"A slash is added, blanks are escaped on both sides of the question mark", OLESTR("GET"),
     OLESTR("a b?x y"), kUsualFlags, OLESTR(""), "",
     "GET /a%20b?x%20y HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\n"
     "User-Agent: CWinInetConnection\r\nConnection: Keep-Alive\r\n\r\n"},
    {"Escapes and double slashes stay, dot segments are resolved", OLESTR("GET"),
     OLESTR("/a%2db//c/../d%"), kUsualFlags, OLESTR(""), "",
     "GET /a%2db//d% HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\n"
     "User-Agent: CWinInetConnection\r\nConnection: Keep-Alive\r\n\r\n"},
    {"A non-ASCII query goes out in the code page", OLESTR("GET"), OLESTR("/q?\u00e9\u20ac"),
     kUsualFlags, OLESTR(""), "",
     "GET /q?\xe9\x80 HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\n"
     "User-Agent: CWinInetConnection\r\nConnection: Keep-Alive\r\n\r\n"},
    {"A non-ASCII path goes out as escaped UTF-8", OLESTR("GET"), OLESTR("/\u00e9"), kUsualFlags,
     OLESTR(""), "",
     "GET /%c3%a9 HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\n"
     "User-Agent: CWinInetConnection\r\nConnection: Keep-Alive\r\n\r\n",
     // Wine writes the path, too, in the code page; Windows escapes it.
     "GET /\xe9 HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\n"
     "User-Agent: CWinInetConnection\r\nConnection: Keep-Alive\r\n\r\n"},
    {"The caller's headers: LF or CRLF, empty lines and lines without a colon dropped",
     OLESTR("GET"), OLESTR("/h"), kUsualFlags, OLESTR("A: 1\n\nB: 2\r\n\r\nnocolon\nC:3\n D: 4\n"),
     "",
     "GET /h HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\nUser-Agent: CWinInetConnection\r\n"
     "A: 1\r\nB: 2\r\nC: 3\r\nD: 4\r\nConnection: Keep-Alive\r\n\r\n"},
    {"A header given twice: the later one stays", OLESTR("GET"), OLESTR("/t"), kUsualFlags,
     OLESTR("X: 1\nY: 1\nX: 2"), "",
     "GET /t HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\nUser-Agent: CWinInetConnection\r\n"
     "Y: 1\r\nX: 2\r\nConnection: Keep-Alive\r\n\r\n"},
    {"The caller's own Accept, User-Agent and Content-Length move among his headers",
     OLESTR("POST"), OLESTR("/o"), kUsualFlags,
     OLESTR("User-Agent: me\nAccept: a/b\nContent-Length: 2"), "zz",
     "POST /o HTTP/1.1\r\nHost: HOST\r\nUser-Agent: me\r\nAccept: a/b\r\nContent-Length: 2\r\n"
     "Connection: Keep-Alive\r\n\r\nzz"},
    {"Without the flag there is no Connection header", OLESTR("GET"), OLESTR("/n"),
     INTERNET_FLAG_NO_UI, OLESTR(""), "",
     "GET /n HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\nUser-Agent: CWinInetConnection\r\n\r\n"},
    {"An uncached PUT says so to caches", OLESTR("PUT"), OLESTR("/c"),
     kUsualFlags | INTERNET_FLAG_NO_CACHE_WRITE, OLESTR("X: 1"), "b",
     "PUT /c HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\nContent-Length: 1\r\n"
     "User-Agent: CWinInetConnection\r\nCache-Control: no-cache\r\nX: 1\r\n"
     "Connection: Keep-Alive\r\n\r\nb"},
};

TEST(WinInetWire, SendsTheseBytes) {
  for (const WireCase& wire : kWireCases) {
    SCOPED_TRACE(wire.name);
    ScriptedPeer peer(Answering(Answer("200 OK", "", "ok")));
    Exchange exchange("127.0.0.1", peer.Port(), wire.verb, wire.objectName, wire.flags);
    ASSERT_EQ(exchange.Send(wire.headers, wire.body), 0U);
    EXPECT_EQ(exchange.Status(), 200U);
    EXPECT_EQ(exchange.ReadAll(), "ok");
    const bool differs = kIsWindows && *wire.windows != '\0';
    EXPECT_EQ(peer.LastRequest(), WithHost(differs ? wire.windows : wire.request, peer));
  }
}

TEST(WinInetWire, StreamsABodyOfDeclaredLength) {
  ScriptedPeer peer(Answering(Answer("201 Created", "", "")));
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/up"),
                    kUsualFlags | INTERNET_FLAG_NO_CACHE_WRITE);
  ASSERT_EQ(exchange.Begin(5), 0U);
  EXPECT_EQ(exchange.Write("ab"), 0U);
  EXPECT_EQ(exchange.Write("cde"), 0U);
  ASSERT_EQ(exchange.End(), 0U);
  EXPECT_EQ(exchange.Status(), 201U);
  EXPECT_EQ(peer.LastRequest(),
            WithHost("PUT /up HTTP/1.1\r\nAccept: text/*\r\nHost: HOST\r\n"
                     "User-Agent: CWinInetConnection\r\nCache-Control: no-cache\r\n"
                     "Content-Length: 5\r\nConnection: Keep-Alive\r\n\r\nabcde",
                     peer));
}

// What lies below the handles is used again; nothing of an upload is left in it.
TEST(WinInetWire, SendsTheSameBytesAfterAnUpload) {
  for (const WireCase& wire : kWireCases) {
    SCOPED_TRACE(wire.name);
    ScriptedPeer peer(Answering(Answer("200 OK", "", "ok")));
    Exchange upload("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/up"));
    ASSERT_EQ(upload.Begin(2), 0U);
    EXPECT_EQ(upload.Write("ab"), 0U);
    ASSERT_EQ(upload.End(), 0U);
    EXPECT_EQ(upload.ReadAll(), "ok");
    Exchange exchange("127.0.0.1", peer.Port(), wire.verb, wire.objectName, wire.flags);
    ASSERT_EQ(exchange.Send(wire.headers, wire.body), 0U);
    EXPECT_EQ(exchange.ReadAll(), "ok");
    const bool differs = kIsWindows && *wire.windows != '\0';
    EXPECT_EQ(peer.LastRequest(), WithHost(differs ? wire.windows : wire.request, peer));
  }
}

TEST(WinInetWire, SendsAgainOnOneHandle) {
  ScriptedPeer peer(Answering(Answer("200 OK", "", "ok")));
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("POST"), OLESTR("/r"));
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(exchange.Send(OLESTR("X: 1"), "abc"), 0U);
    EXPECT_EQ(exchange.ReadAll(), "ok");
  }
  const std::vector<std::string> requests = peer.Requests();
  ASSERT_EQ(requests.size(), 3U);
  EXPECT_EQ(requests[0], requests[1]);
  EXPECT_EQ(requests[0], requests[2]);
}

struct RedirectCase {
  const char* status;
  LPCWSTR verb;
  const char* followUp;  // the second request's verb; empty: not followed
  bool keepsBody;
};

constexpr RedirectCase kRedirectCases[] = {
    {"301 Moved", OLESTR("POST"), "GET", false},     {"302 Found", OLESTR("POST"), "GET", false},
    {"303 See Other", OLESTR("POST"), "GET", false}, {"302 Found", OLESTR("PUT"), "GET", false},
    {"302 Found", OLESTR("DELETE"), "GET", false},   {"302 Found", OLESTR("GET"), "GET", false},
    {"307 Again", OLESTR("POST"), "POST", true},     {"307 Again", OLESTR("PUT"), "PUT", true},
    {"304 Unchanged", OLESTR("GET"), "", false},     {"300 Choices", OLESTR("GET"), "", false},
};

TEST(WinInetWire, FollowsRedirects) {
  for (const RedirectCase& redirect : kRedirectCases) {
    SCOPED_TRACE(redirect.status);
    const std::string answer = Answer(redirect.status, "Location: /final?a=1\r\n", "");
    ScriptedPeer peer(Script{ReadRequest(), Send(answer), ReadRequest(),
                             Send(Answer("200 OK", "", "there")), ReadRequest()});
    Exchange exchange("127.0.0.1", peer.Port(), redirect.verb, OLESTR("/start"));
    const std::string body = WideView(redirect.verb) == OLESTR("GET") ? "" : "body";
    ASSERT_EQ(exchange.Send(OLESTR("Content-Type: text/xml\nX-K: 1"), body), 0U);
    const std::vector<std::string> requests = peer.Requests();
    if (*redirect.followUp == '\0') {
      EXPECT_EQ(exchange.Status(), static_cast<DWORD>(std::stoul(redirect.status)));
      EXPECT_EQ(requests.size(), 1U);
      continue;
    }
    EXPECT_EQ(exchange.Status(), 200U);
    EXPECT_EQ(exchange.ReadAll(), "there");
    ASSERT_EQ(requests.size(), 2U);
    // Wine sends a 307 on without its body; Windows keeps it.
    const bool body307 = redirect.keepsBody && !kIsWindows;
    std::string expected = redirect.followUp;
    expected += " /final?a=1 HTTP/1.1\r\nAccept: text/*\r\nUser-Agent: CWinInetConnection\r\n";
    if (body307) expected += "Content-Type: text/xml\r\n";
    expected += "X-K: 1\r\nHost: HOST\r\n";
    if (body307) expected += "Content-Length: 4\r\n";
    expected += "Connection: Keep-Alive\r\n\r\n";
    if (body307) expected += "body";
    EXPECT_EQ(requests[1], WithHost(expected, peer));
  }
}

/// INTERNET_OPTION_URL, or the error in a text.
std::string UrlOf(const Exchange& exchange) {
  OLECHAR buffer[256] = {};
  DWORD size = sizeof buffer;
  WinInet& port = CurrentPort<WinInet>();
  if (!port.InternetQueryOptionW(exchange.Request(), INTERNET_OPTION_URL, buffer, &size)) {
    return "error " + std::to_string(port.GetLastError());
  }
  std::string url;
  for (const OLECHAR unit : WideView(buffer)) url.push_back(static_cast<char>(unit));
  return url;
}

TEST(WinInetWire, TellsWhereARequestStands) {
  ScriptedPeer peer(Script{ReadRequest(), Send(Answer("307 Again", "Location: /final?a=1\r\n", "")),
                           ReadRequest(), Send(Answer("200 OK", "", "there")), ReadRequest()});
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/start"));
  const std::string origin = "http://127.0.0.1:" + std::to_string(peer.Port());
  EXPECT_EQ(UrlOf(exchange), origin + "/start");
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(UrlOf(exchange), origin + "/final?a=1");
  OLECHAR small[4] = {};
  DWORD size = sizeof small;
  EXPECT_FALSE(CurrentPort<WinInet>().InternetQueryOptionW(exchange.Request(), INTERNET_OPTION_URL,
                                                           small, &size));
}

TEST(WinInetWire, LeavesRedirectsAloneWhenTold) {
  ScriptedPeer peer(Answering(Answer("307 Again", "Location: http://other.invalid/x?y\r\n", "")));
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/start"),
                    kUsualFlags | INTERNET_FLAG_NO_AUTO_REDIRECT);
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.Status(), 307U);
  EXPECT_EQ(exchange.Header(HTTP_QUERY_LOCATION), "http://other.invalid/x?y");
  EXPECT_EQ(peer.Requests().size(), 1U);
}

TEST(WinInetWire, ReadsHeadersByNumber) {
  ScriptedPeer peer(Answering(
      "HTTP/1.1 200 Very Fine\r\ncontent-type: text/xml\r\nSet-Cookie: a=1\r\nset-cookie: b=2\r\n"
      "Content-Length: 2\r\n\r\nhi"));
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.Header(HTTP_QUERY_STATUS_CODE), "200");
  EXPECT_EQ(exchange.Header(HTTP_QUERY_STATUS_TEXT), "Very Fine");
  EXPECT_EQ(exchange.Header(HTTP_QUERY_VERSION), "HTTP/1.1");
  EXPECT_EQ(exchange.Header(HTTP_QUERY_CONTENT_TYPE), "text/xml");
  EXPECT_EQ(exchange.Header(HTTP_QUERY_CONTENT_LENGTH), "2");
  DWORD index = 0;
  EXPECT_EQ(exchange.Header(HTTP_QUERY_SET_COOKIE, &index), "a=1");
  EXPECT_EQ(index, 1U);
  EXPECT_EQ(exchange.Header(HTTP_QUERY_SET_COOKIE, &index), "b=2");
  EXPECT_EQ(exchange.Header(HTTP_QUERY_SET_COOKIE, &index), "(none)");
  EXPECT_EQ(CurrentPort<WinInet>().GetLastError(), DWORD{ERROR_HTTP_HEADER_NOT_FOUND});
  EXPECT_EQ(exchange.Header(HTTP_QUERY_LOCATION), "(none)");
  EXPECT_EQ(CurrentPort<WinInet>().GetLastError(), DWORD{ERROR_HTTP_HEADER_NOT_FOUND});
}

TEST(WinInetWire, TellsTheSizeThatAHeaderNeeds) {
  ScriptedPeer peer(Answering(Answer("200 OK", "Server: test\r\n", "")));
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  ASSERT_EQ(exchange.Send(), 0U);
  WinInet& port = CurrentPort<WinInet>();
  DWORD size = 0;
  EXPECT_FALSE(port.HttpQueryInfoW(exchange.Request(), HTTP_QUERY_SERVER, nullptr, &size, nullptr));
  EXPECT_EQ(port.GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
  EXPECT_EQ(size, 10U);
  WCHAR buffer[5];
  EXPECT_TRUE(port.HttpQueryInfoW(exchange.Request(), HTTP_QUERY_SERVER, buffer, &size, nullptr));
  EXPECT_EQ(size, 8U);
  EXPECT_EQ(WideView(buffer), OLESTR("test"));
}

TEST(WinInetWire, GivesRawHeaders) {
  ScriptedPeer peer(Answering("HTTP/1.1 200 OK\r\nContent-Length: 0\r\nX-A: 1\r\n\r\n"));
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.Header(HTTP_QUERY_RAW_HEADERS_CRLF),
            "HTTP/1.1 200 OK\r\nContent-Length: 0\r\nX-A: 1\r\n\r\n");
  EXPECT_EQ(exchange.Header(HTTP_QUERY_RAW_HEADERS),
            std::string("HTTP/1.1 200 OK\0Content-Length: 0\0X-A: 1\0", 41));
}

TEST(WinInetWire, PassesOverInterimAnswers) {
  ScriptedPeer peer(Script{ReadRequest(),
                           Send("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 201 Created\r\n"
                                "Location: hdfs://x/y\r\nContent-Length: 0\r\n\r\n"),
                           ReadRequest()});
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/"));
  ASSERT_EQ(exchange.Send(OLESTR(""), "body"), 0U);
  EXPECT_EQ(exchange.Status(), 201U);
  EXPECT_EQ(exchange.Header(HTTP_QUERY_LOCATION), "hdfs://x/y");
}

TEST(WinInetWire, FillsTheBufferThoughTheBodyDrips) {
  ScriptedPeer peer(Script{ReadRequest(), Send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n"),
                           SendSlowly("0123456789", 5), ReadRequest()});
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  ASSERT_EQ(exchange.Send(), 0U);
  char buffer[8] = {};
  DWORD count = 0;
  ASSERT_TRUE(
      CurrentPort<WinInet>().InternetReadFile(exchange.Request(), buffer, sizeof(buffer), &count));
  EXPECT_EQ(count, 8U);
  EXPECT_EQ(exchange.ReadAll(), "89");
}

TEST(WinInetWire, ReadsChunksAndBodiesWithoutLength) {
  for (const char* answer :
       {"HTTP/1.1 200 OK\r\ntransfer-encoding: chunked\r\n\r\n3\r\nabc\r\n2;x=y\r\nde\r\n0\r\n\r\n",
        "HTTP/1.1 200 OK\r\n\r\nabcde"}) {
    SCOPED_TRACE(answer);
    ScriptedPeer peer(Script{ReadRequest(), Send(answer), Close()});
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Send(), 0U);
    EXPECT_EQ(exchange.ReadAll(2), "abcde");
  }
}

TEST(WinInetWire, TellsKindsOfHandlesApart) {
  WinInet& port = CurrentPort<WinInet>();
  ScriptedPeer peer(Answering(Answer("200 OK", "", "")));
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  EXPECT_FALSE(port.HttpSendRequestW(exchange.Connect(), nullptr, 0, nullptr, 0));
  EXPECT_EQ(port.GetLastError(), DWORD{ERROR_INTERNET_INCORRECT_HANDLE_TYPE});
  EXPECT_EQ(
      port.HttpOpenRequestW(exchange.Session(), nullptr, nullptr, nullptr, nullptr, nullptr, 0, 0),
      nullptr);
  EXPECT_EQ(port.GetLastError(), DWORD{ERROR_INTERNET_INCORRECT_HANDLE_TYPE});
  char buffer[4];
  DWORD count = 0;
  const auto invented = reinterpret_cast<HINTERNET>(std::uintptr_t{0x12345});
  EXPECT_FALSE(port.InternetReadFile(invented, buffer, 4, &count));
  EXPECT_EQ(port.GetLastError(), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_FALSE(port.InternetCloseHandle(invented));
  EXPECT_EQ(port.GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}

TEST(WinInetWire, ClosesWhatWasOpenedBelow) {
  WinInet& port = CurrentPort<WinInet>();
  HINTERNET session = port.InternetOpenW(OLESTR("a"), 0, nullptr, nullptr, 0);
  HINTERNET connect = port.InternetConnectW(session, OLESTR("localhost"), 1, nullptr, nullptr,
                                            INTERNET_SERVICE_HTTP, 0, 0);
  HINTERNET request =
      port.HttpOpenRequestW(connect, nullptr, nullptr, nullptr, nullptr, nullptr, 0, 0);
  ASSERT_NE(request, nullptr);
  EXPECT_TRUE(port.InternetCloseHandle(session));
  EXPECT_FALSE(port.InternetCloseHandle(request));
  EXPECT_EQ(port.GetLastError(), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_FALSE(port.InternetCloseHandle(connect));
  EXPECT_EQ(port.GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}

TEST(WinInetWire, RefusesAConnectionWithoutAHost) {
  WinInet& port = CurrentPort<WinInet>();
  HINTERNET session = port.InternetOpenW(OLESTR("a"), 0, nullptr, nullptr, 0);
  for (LPCWSTR host : {LPCWSTR{OLESTR("")}, LPCWSTR{nullptr}}) {
    EXPECT_EQ(
        port.InternetConnectW(session, host, 80, nullptr, nullptr, INTERNET_SERVICE_HTTP, 0, 0),
        nullptr);
    EXPECT_EQ(port.GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
  }
  port.InternetCloseHandle(session);
}

TEST(WinInetWire, TellsAServerThatIsNotThere) {
  std::uint16_t port = 0;
  { port = ScriptedPeer(Script{}).Port(); }
  Exchange exchange("127.0.0.1", port, OLESTR("GET"), OLESTR("/"));
  EXPECT_EQ(exchange.Send(), DWORD{ERROR_INTERNET_CANNOT_CONNECT});
  EXPECT_EQ(exchange.Status(), 0U);
}

TEST(WinInetWire, HoldsSecurityFlags) {
  WinInet& port = CurrentPort<WinInet>();
  ScriptedPeer peer(Answering(Answer("200 OK", "", "")));
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  ASSERT_EQ(exchange.Send(), 0U);
  DWORD flags = 1;
  DWORD size = sizeof(flags);
  ASSERT_TRUE(
      port.InternetQueryOptionW(exchange.Request(), INTERNET_OPTION_SECURITY_FLAGS, &flags, &size));
  EXPECT_EQ(flags, 0U);
  flags = SECURITY_FLAG_IGNORE_UNKNOWN_CA | SECURITY_FLAG_IGNORE_CERT_CN_INVALID;
  ASSERT_TRUE(
      port.InternetSetOptionW(exchange.Request(), INTERNET_OPTION_SECURITY_FLAGS, &flags, size));
  DWORD stored = 0;
  ASSERT_TRUE(port.InternetQueryOptionW(exchange.Request(), INTERNET_OPTION_SECURITY_FLAGS, &stored,
                                        &size));
  EXPECT_EQ(stored, flags);
}

TEST(WinInetWire, HasNothingToAskAboutAnAnswer) {
  for (const char* status : {"200 OK", "404 Not Found"}) {
    ScriptedPeer peer(Answering(Answer(status, "", "")));
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Send(), 0U);
    // Wine wants a window before it looks at anything.
    if (kIsWindows && CurrentPort<WinInet>().GetActiveWindow() == nullptr) continue;
    EXPECT_EQ(CurrentPort<WinInet>().InternetErrorDlg(nullptr, exchange.Request(), 0, 7, nullptr),
              0U);
  }
}

}  // namespace
}  // namespace velandoc::test
