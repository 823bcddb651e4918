// Whatever a server answers, over a socket: both ports read the same head and the same body out of
// it, or fail alike, and what they tell of it fits where it goes.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/winhttp_exchange.h"
#include "tests/support/wininet_exchange.h"

namespace velandoc::test {
namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

/// Answers each connection's first request with the same bytes and ends. Lives as long as the
/// program.
class Peer {
 public:
  Peer() : m_listener(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    Require(bind(m_listener, plain, length) == 0 && listen(m_listener, 16) == 0);
    Require(getsockname(m_listener, plain, &length) == 0);
    m_port = ntohs(address.sin_port);
    std::thread([this] { Serve(); }).detach();
  }

  INTERNET_PORT Port() const { return m_port; }
  void SetAnswer(std::string answer) {
    const std::lock_guard lock(m_mutex);
    m_answer = std::move(answer);
  }

 private:
  void Serve() {
    for (;;) {
      const int client = accept(m_listener, nullptr, nullptr);
      Require(client >= 0);
      Answer(client);
      close(client);
    }
  }
  void Answer(int client) {
    std::string request;
    char piece[4096];
    while (request.find("\r\n\r\n") == std::string::npos) {
      const ssize_t count = recv(client, piece, sizeof piece, 0);
      if (count <= 0) return;
      request.append(piece, static_cast<std::size_t>(count));
    }
    std::string answer;
    {
      const std::lock_guard lock(m_mutex);
      answer = m_answer;
    }
    send(client, answer.data(), answer.size(), MSG_NOSIGNAL);
    shutdown(client, SHUT_WR);
    // Until the client has gone, so that no reset takes bytes from it.
    while (recv(client, piece, sizeof piece, 0) > 0) {
    }
  }

  int m_listener;
  INTERNET_PORT m_port = 0;
  std::mutex m_mutex;
  std::string m_answer;
};

Peer& ThePeer() {
  static Peer& peer = *new Peer;
  return peer;
}

/// What a caller learns.
struct Seen {
  bool hasHead = false;
  DWORD status = 0;
  std::string head;
  std::string location;
  std::string body;
  bool isWhole = false;

  bool operator==(const Seen&) const = default;
};

/// A value that is told with its size: the text and its terminator are in the buffer, and nothing
/// behind them is touched.
template <class Query>
std::string Told(Query query) {
  constexpr OLECHAR kUntouched = 0xABCD;
  std::vector<WCHAR> buffer(8192, kUntouched);
  const auto capacity = static_cast<DWORD>((buffer.size() - 1) * sizeof(WCHAR));
  DWORD size = capacity;
  if (!query(buffer.data(), &size)) {
    Require(buffer.front() == kUntouched);
    return "(none)";
  }
  Require(size % sizeof(WCHAR) == 0 && size + sizeof(WCHAR) <= capacity);
  const std::size_t length = size / sizeof(WCHAR);
  Require(buffer[length] == 0 && buffer.back() == kUntouched);
  return std::string(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(length));
}

Seen ThroughWinInet() {
  WinInet& inet = CurrentPort<WinInet>();
  // A redirect would lead anywhere.
  Exchange exchange("127.0.0.1", ThePeer().Port(), OLESTR("GET"), OLESTR("/"),
                    kUsualFlags | INTERNET_FLAG_NO_AUTO_REDIRECT);
  Seen seen;
  seen.hasHead = exchange.Send() == ERROR_SUCCESS;
  seen.status = exchange.Status();
  const auto header = [&](DWORD number) {
    return Told([&](WCHAR* buffer, DWORD* size) {
      return inet.HttpQueryInfoW(exchange.Request(), number, buffer, size, nullptr);
    });
  };
  seen.head = header(HTTP_QUERY_RAW_HEADERS_CRLF);
  seen.location = header(HTTP_QUERY_LOCATION);
  DWORD error = ERROR_SUCCESS;
  seen.body = exchange.ReadAll(1000, &error);
  seen.isWhole = error == ERROR_SUCCESS;
  return seen;
}

Seen ThroughWinHttp() {
  WinHttp& http = CurrentPort<WinHttp>();
  HttpExchange exchange("127.0.0.1", ThePeer().Port(), OLESTR("GET"), OLESTR("/"));
  Require(exchange.SetOption(WINHTTP_OPTION_REDIRECT_POLICY,
                             WINHTTP_OPTION_REDIRECT_POLICY_NEVER) == ERROR_SUCCESS);
  Seen seen;
  seen.hasHead = exchange.Run() == ERROR_SUCCESS;
  seen.status = exchange.Status();
  const auto header = [&](DWORD number) {
    return Told([&](WCHAR* buffer, DWORD* size) {
      return http.WinHttpQueryHeaders(exchange.Request(), number, nullptr, buffer, size, nullptr);
    });
  };
  seen.head = header(WINHTTP_QUERY_RAW_HEADERS_CRLF);
  seen.location = header(WINHTTP_QUERY_LOCATION);
  DWORD error = ERROR_SUCCESS;
  seen.body = exchange.ReadAll(1000, &error);
  seen.isWhole = error == ERROR_SUCCESS;
  return seen;
}

void Check(const std::string& answer) {
  ThePeer().SetAnswer(answer);
  const Seen seen = ThroughWinInet();
  Require(seen == ThroughWinHttp());
  Require(seen.hasHead || (seen.status == 0 && seen.head == "(none)" && seen.body.empty()));
  Require(seen.body.size() <= answer.size());
  if (seen.hasHead) Require(seen.status >= 200 && seen.head.ends_with("\r\n\r\n"));
}

}  // namespace
}  // namespace velandoc::test

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  for (const char* proxy : {"http_proxy", "all_proxy", "ALL_PROXY"}) unsetenv(proxy);
  setenv("VELANDOC_NO_INPUT", "1", 1);
  setenv("VELANDOC_TIMEOUT_SECONDS", "5", 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The dictionary of a fuzzer that sees no further than bytes: a good start, mostly.
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const bool isWhole = bytes.starts_with("HTTP/");
  velandoc::test::Check(isWhole ? bytes : "HTTP/1.1 200 OK\r\n" + bytes);
  return 0;
}
