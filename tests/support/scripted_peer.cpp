#include "tests/support/scripted_peer.h"

#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string_view>

namespace velandoc::test {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kLongestWait{20};

#ifdef _WIN32
using Native = SOCKET;
constexpr int kNoSignal = 0;
constexpr int kEndOfSending = SD_SEND;
void CloseSocket(std::intptr_t socket) { closesocket(static_cast<Native>(socket)); }
void StartSockets() {
  static const int result = [] {
    WSADATA data;
    return WSAStartup(MAKEWORD(2, 2), &data);
  }();
  if (result != 0) throw std::runtime_error("no sockets");
}
#else
using Native = int;
constexpr int kNoSignal = MSG_NOSIGNAL;
constexpr int kEndOfSending = SHUT_WR;
void CloseSocket(std::intptr_t socket) { close(static_cast<Native>(socket)); }
void StartSockets() {}
#endif

/// True once the socket is ready; false after `patience`.
bool IsReady(std::intptr_t socket, bool toWrite, std::chrono::milliseconds patience) {
  fd_set files;
  FD_ZERO(&files);
  FD_SET(static_cast<Native>(socket), &files);
  timeval time = {};
  time.tv_usec = static_cast<decltype(time.tv_usec)>(patience.count() * 1000);
  return select(static_cast<int>(socket) + 1, toWrite ? nullptr : &files,
                toWrite ? &files : nullptr, nullptr, &time) > 0;
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char character) {
    return static_cast<char>(std::tolower(character));
  });
  return text;
}

}  // namespace

Step ReadRequest() { return {Step::Kind::kReadRequest, {}, 0}; }
Step ReadHead() { return {Step::Kind::kReadHead, {}, 0}; }
Step Send(std::string text) { return {Step::Kind::kSend, std::move(text), 0}; }
Step SendSlowly(std::string text, std::uint64_t milliseconds) {
  return {Step::Kind::kSendSlowly, std::move(text), milliseconds};
}
Step SendFill(std::uint64_t count) { return {Step::Kind::kSendFill, {}, count}; }
Step Sleep(std::uint64_t milliseconds) { return {Step::Kind::kSleep, {}, milliseconds}; }
Step Reset() { return {Step::Kind::kReset, {}, 0}; }
Step Close() { return {Step::Kind::kClose, {}, 0}; }

std::string Answer(const std::string& status, const std::string& headers, const std::string& body) {
  std::string text = "HTTP/1.1 ";
  text.append(status).append("\r\n").append(headers);
  text.append("Content-Length: ").append(std::to_string(body.size())).append("\r\n\r\n");
  return text.append(body);
}

Script Answering(const std::string& answer, int count) {
  Script script;
  for (int i = 0; i < count; ++i) {
    script.push_back(ReadRequest());
    script.push_back(Send(answer));
  }
  return script;
}

ScriptedPeer::ScriptedPeer(std::vector<Script> scripts) : m_scripts(std::move(scripts)) {
  StartSockets();
  m_listener = static_cast<Socket>(socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof(address);
  const auto native = static_cast<Native>(m_listener);
  if (bind(native, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0 ||
      listen(native, 64) != 0 ||
      getsockname(native, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    throw std::runtime_error("cannot listen on loopback");
  }
  m_port = ntohs(address.sin_port);
  m_thread = std::thread([this] { Listen(); });
}

ScriptedPeer::~ScriptedPeer() {
  m_stopping = true;
  m_thread.join();
  for (std::thread& player : m_players) player.join();
  CloseSocket(m_listener);
}

std::vector<std::string> ScriptedPeer::Requests() const {
  const std::lock_guard lock(m_mutex);
  return m_requests;
}

std::string ScriptedPeer::LastRequest() const {
  const std::lock_guard lock(m_mutex);
  return m_requests.empty() ? std::string() : m_requests.back();
}

void ScriptedPeer::Listen() {
  while (!m_stopping) {
    if (!IsReady(m_listener, false, std::chrono::milliseconds(20))) continue;
    const auto accepted =
        static_cast<Socket>(accept(static_cast<Native>(m_listener), nullptr, nullptr));
    if (accepted < 0) continue;
    const auto index = std::min(static_cast<std::size_t>(m_connections), m_scripts.size() - 1);
    ++m_connections;
    m_players.emplace_back([this, accepted, index] { Play(accepted, m_scripts[index]); });
  }
}

void ScriptedPeer::Play(Socket socket, const Script& script) {
  std::string pending;
  for (const Step& step : script) {
    if (!Run(socket, step, pending)) break;
  }
  CloseSocket(socket);
}

bool ScriptedPeer::WaitFor(Socket socket, bool toWrite) {
  const Clock::time_point end = Clock::now() + kLongestWait;
  while (!m_stopping && Clock::now() < end) {
    if (IsReady(socket, toWrite, std::chrono::milliseconds(20))) return true;
  }
  return false;
}

bool ScriptedPeer::ReadInto(Socket socket, std::string& pending) {
  if (!WaitFor(socket, false)) return false;
  char buffer[65536];
  const auto count = recv(static_cast<Native>(socket), buffer, sizeof(buffer), 0);
  if (count <= 0) return false;
  pending.append(buffer, static_cast<std::size_t>(count));
  return true;
}

bool ScriptedPeer::TakeRequest(Socket socket, std::string& pending, bool withBody) {
  std::size_t headEnd = 0;
  while ((headEnd = pending.find("\r\n\r\n")) == std::string::npos) {
    if (!ReadInto(socket, pending)) return false;
  }
  std::size_t end = headEnd + 4;
  const std::string head = Lower(pending.substr(0, end));
  if (withBody) {
    if (head.find("\r\ntransfer-encoding: chunked") != std::string::npos) {
      while (pending.find("\r\n0\r\n\r\n", headEnd + 2) == std::string::npos &&
             pending.compare(end, std::string::npos, "0\r\n\r\n") != 0) {
        if (!ReadInto(socket, pending)) return false;
      }
      end = pending.size();
    } else if (const std::size_t at = head.find("\r\ncontent-length:"); at != std::string::npos) {
      end += std::stoull(head.substr(at + 17));
      while (pending.size() < end) {
        if (!ReadInto(socket, pending)) return false;
      }
    }
  }
  const std::lock_guard lock(m_mutex);
  m_requests.push_back(pending.substr(0, end));
  pending.erase(0, end);
  return true;
}

bool ScriptedPeer::SendAll(Socket socket, const char* data, std::size_t size) {
  while (size != 0) {
    if (!WaitFor(socket, true)) return false;
    const auto piece = std::min<std::size_t>(size, 16384);
#ifdef _WIN32
    const auto count = send(static_cast<Native>(socket), data, static_cast<int>(piece), kNoSignal);
#else
    const auto count = send(static_cast<Native>(socket), data, piece, kNoSignal | MSG_DONTWAIT);
#endif
    if (count <= 0) return false;
    m_sent += static_cast<std::uint64_t>(count);
    data += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

bool ScriptedPeer::Run(Socket socket, const Step& step, std::string& pending) {
  switch (step.kind) {
    case Step::Kind::kReadRequest:
      return TakeRequest(socket, pending, true);
    case Step::Kind::kReadHead:
      return TakeRequest(socket, pending, false);
    case Step::Kind::kSend:
      return SendAll(socket, step.text.data(), step.text.size());
    case Step::Kind::kSendSlowly:
      for (const char& character : step.text) {
        std::this_thread::sleep_for(std::chrono::milliseconds(step.number));
        if (m_stopping || !SendAll(socket, &character, 1)) return false;
      }
      return true;
    case Step::Kind::kSendFill: {
      const std::string block(65536, 'x');
      for (std::uint64_t left = step.number; left != 0;) {
        const auto piece = std::min<std::uint64_t>(left, block.size());
        if (!SendAll(socket, block.data(), static_cast<std::size_t>(piece))) return false;
        left -= piece;
      }
      return true;
    }
    case Step::Kind::kSleep: {
      const Clock::time_point end = Clock::now() + std::chrono::milliseconds(step.number);
      while (!m_stopping && Clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
      }
      return true;
    }
    case Step::Kind::kReset: {
      linger hard = {};
      hard.l_onoff = 1;
      setsockopt(static_cast<Native>(socket), SOL_SOCKET, SO_LINGER,
                 reinterpret_cast<const char*>(&hard), sizeof(hard));
      return false;
    }
    case Step::Kind::kClose:
      shutdown(static_cast<Native>(socket), kEndOfSending);
      return false;
  }
  return false;
}

}  // namespace velandoc::test
