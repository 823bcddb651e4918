#include "tests/support/standin_client.h"

#ifdef _WIN32
#include <winsock2.h>
#else
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

namespace velandoc::test {
namespace {

using nlohmann::json;

constexpr const char* kVariable = "VELANDOC_STANDIN";

#ifdef _WIN32
using SocketHandle = SOCKET;
using IoSize = int;
constexpr SocketHandle kNoSocket = INVALID_SOCKET;
void CloseSocket(SocketHandle handle) { closesocket(handle); }
void StartSockets() {
  static const int result = [] {
    WSADATA data;
    return WSAStartup(MAKEWORD(2, 2), &data);
  }();
  if (result != 0) throw std::runtime_error("stand-in: no sockets");
}
#else
using SocketHandle = int;
using IoSize = std::size_t;
constexpr SocketHandle kNoSocket = -1;
void CloseSocket(SocketHandle handle) { close(handle); }
void StartSockets() {}
#endif

class Socket {
 public:
  explicit Socket(std::uint16_t port) {
    StartSockets();
    m_handle = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    if (m_handle == kNoSocket ||
        connect(m_handle, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
      if (m_handle != kNoSocket) CloseSocket(m_handle);
      throw std::runtime_error("stand-in: no connection to port " + std::to_string(port));
    }
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;
  ~Socket() { CloseSocket(m_handle); }

  void Send(std::string_view bytes) {
    while (!bytes.empty()) {
      const auto sent = send(m_handle, bytes.data(), static_cast<IoSize>(bytes.size()), 0);
      if (sent <= 0) throw std::runtime_error("stand-in: the connection broke");
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
  }

  std::string ReceiveAll() {
    std::string bytes;
    std::array<char, 16384> piece{};
    for (;;) {
      const auto got = recv(m_handle, piece.data(), static_cast<IoSize>(piece.size()), 0);
      if (got < 0) throw std::runtime_error("stand-in: the connection broke");
      if (got == 0) return bytes;
      bytes.append(piece.data(), static_cast<std::size_t>(got));
    }
  }

 private:
  SocketHandle m_handle = kNoSocket;
};

// The number behind "name=" in a list of such pairs.
std::uint16_t PortOf(std::string_view list, std::string_view name) {
  while (!list.empty()) {
    const std::size_t comma = list.find(',');
    const std::string_view item = list.substr(0, comma);
    if (item.size() > name.size() && item.starts_with(name) && item[name.size()] == '=') {
      std::uint16_t port = 0;
      const char* end = item.data() + item.size();
      const auto result = std::from_chars(item.data() + name.size() + 1, end, port);
      if (result.ec == std::errc() && result.ptr == end) return port;
    }
    if (comma == std::string_view::npos) break;
    list.remove_prefix(comma + 1);
  }
  throw std::runtime_error(std::string(kVariable) + " names no port for " + std::string(name));
}

// The log shows each byte as the code point of the same number; JSON text holds those as UTF-8.
std::string BytesOf(const json& text) {
  const std::string& utf8 = text.get_ref<const std::string&>();
  std::string bytes;
  bytes.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    if (lead < 0x80) {
      bytes += utf8[i];
    } else {
      const auto tail = static_cast<unsigned char>(utf8.at(++i));
      bytes += static_cast<char>(((lead & 3) << 6) | (tail & 0x3f));
    }
  }
  return bytes;
}

StandInRequest RequestOf(const json& record) {
  StandInRequest request;
  request.number = record.at("n");
  request.connection = record.at("connection");
  request.tls = record.at("tls");
  request.proxy = record.at("proxy");
  request.connectHost = BytesOf(record.at("connect_host"));
  request.method = BytesOf(record.at("method"));
  request.target = BytesOf(record.at("target"));
  request.host = BytesOf(record.at("host"));
  if (record.contains("operation")) request.operation = BytesOf(record["operation"]);
  if (record.contains("role")) request.role = BytesOf(record["role"]);
  request.head = BytesOf(record.at("head"));
  if (record.contains("body")) request.body = BytesOf(record["body"]);
  request.bodyLength = record.at("body_length");
  if (record.contains("body_sha256")) request.bodySha256 = BytesOf(record["body_sha256"]);
  return request;
}

}  // namespace

bool StandIn::IsAvailable() {
  const char* ports = std::getenv(kVariable);
  return ports && *ports;
}

StandIn::StandIn() {
  if (!IsAvailable()) throw std::runtime_error(std::string(kVariable) + " is not set");
  const std::string_view ports = std::getenv(kVariable);
  m_http = PortOf(ports, "http");
  m_https = PortOf(ports, "https");
  m_control = PortOf(ports, "control");
}

std::string StandIn::HttpUrl(std::string_view pathAndQuery) const {
  return "http://localhost:" + std::to_string(m_http) + std::string(pathAndQuery);
}

std::string StandIn::HttpsUrl(std::string_view pathAndQuery) const {
  return "https://localhost:" + std::to_string(m_https) + std::string(pathAndQuery);
}

void StandIn::SetBehaviour(std::string_view json) { Command("PUT", "/behaviour", json); }
void StandIn::AddBehaviour(std::string_view json) { Command("POST", "/behaviour", json); }
void StandIn::ClearBehaviour() { Command("DELETE", "/behaviour"); }

std::vector<StandInRequest> StandIn::Log() const {
  std::vector<StandInRequest> requests;
  for (const json& record : json::parse(Command("GET", "/log")))
    requests.push_back(RequestOf(record));
  return requests;
}

void StandIn::ClearLog() { Command("DELETE", "/log"); }

void StandIn::SetSite(std::string_view json) { Command("PUT", "/site", json); }
std::string StandIn::Site() const { return Command("GET", "/site"); }
void StandIn::ResetSite() { Command("DELETE", "/site"); }

void StandIn::SetCaller(std::string_view login) {
  Command("PUT", "/caller", json{{"login", std::string(login)}}.dump());
}

void StandIn::SetHdfs(std::string_view json) { Command("PUT", "/hdfs", json); }
void StandIn::ResetHdfs() { Command("DELETE", "/hdfs"); }

void StandIn::SetCertificate(std::string_view kind) {
  const json value = kind.empty() ? json(nullptr) : json(std::string(kind));
  Command("PUT", "/certificate", json{{"kind", value}}.dump());
}

void StandIn::SetRecording(bool on) { Command("PUT", "/recording", json{{"on", on}}.dump()); }

StandInStats StandIn::Stats() const {
  const json value = json::parse(Command("GET", "/stats"));
  return {value.at("connections"), value.at("open"), value.at("tls"), value.at("requests")};
}

void StandIn::Reset() {
  ClearBehaviour();
  ResetSite();
  ResetHdfs();
  SetCertificate({});
  SetRecording(true);
  ClearLog();
}

std::string StandIn::Exchange(std::uint16_t port, std::string_view bytes) const {
  Socket socket(port);
  socket.Send(bytes);
  return socket.ReceiveAll();
}

std::string StandIn::Command(std::string_view method, std::string_view target,
                             std::string_view body) const {
  std::string request(method);
  request += ' ';
  request += target;
  request += " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\nContent-Length: ";
  request += std::to_string(body.size());
  request += "\r\n\r\n";
  request += body;
  std::string answer = Exchange(m_control, request);
  const std::size_t end = answer.find("\r\n\r\n");
  if (end == std::string::npos || !answer.starts_with("HTTP/1.1 200 "))
    throw std::runtime_error("stand-in: " + std::string(method) + " " + std::string(target) +
                             " failed: " + answer);
  answer.erase(0, end + 4);
  return answer;
}

StandInScope::~StandInScope() {
  try {
    m_server.Reset();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
  }
}

}  // namespace velandoc::test
