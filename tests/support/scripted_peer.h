// A server of one test's own: plays a script on loopback and keeps every byte that it got. Both
// homes.
//
// Each connection that arrives runs the next script of the list, the last one again for all that
// follow. A script is a list of steps; a thread runs it, with a limit of a few seconds for every
// wait, so no test can hang.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace velandoc::test {

/// One thing that the peer does.
struct Step {
  enum class Kind {
    kReadRequest,  // a head and the body that it announces; a client that leaves ends the script
    kReadHead,     // a head only
    kSend,         // text
    kSendSlowly,   // text byte by byte, `number` ms apart
    kSendFill,     // `number` bytes 'x'
    kSleep,        // `number` ms
    kReset,        // ends the connection with RST
    kClose,        // ends the stream
  };
  Kind kind;
  std::string text;
  std::uint64_t number = 0;
};

using Script = std::vector<Step>;

Step ReadRequest();
Step ReadHead();
Step Send(std::string text);
Step SendSlowly(std::string text, std::uint64_t milliseconds);
Step SendFill(std::uint64_t count);
Step Sleep(std::uint64_t milliseconds);
Step Reset();
Step Close();

/// "HTTP/1.1 STATUS\r\n", `headers` (each line with its CRLF), a Content-Length and the body.
std::string Answer(const std::string& status, const std::string& headers, const std::string& body);

/// Reads a request and answers it, `count` times over one connection.
Script Answering(const std::string& answer, int count = 100);

class ScriptedPeer {
 public:
  /// Listens on a port of 127.0.0.1 that the system picks.
  explicit ScriptedPeer(std::vector<Script> scripts);
  explicit ScriptedPeer(Script script) : ScriptedPeer(std::vector<Script>{std::move(script)}) {}
  /// Ends all connections and waits for the threads.
  ~ScriptedPeer();
  ScriptedPeer(const ScriptedPeer&) = delete;
  ScriptedPeer& operator=(const ScriptedPeer&) = delete;

  std::uint16_t Port() const { return m_port; }
  /// The requests so far, head and body as they came, in order of arrival.
  std::vector<std::string> Requests() const;
  std::string LastRequest() const;
  int Connections() const { return m_connections; }
  std::uint64_t BytesSent() const { return m_sent; }

 private:
  using Socket = std::intptr_t;

  void Listen();
  void Play(Socket socket, const Script& script);
  bool Run(Socket socket, const Step& step, std::string& pending);
  bool ReadInto(Socket socket, std::string& pending);
  bool TakeRequest(Socket socket, std::string& pending, bool withBody);
  bool SendAll(Socket socket, const char* data, std::size_t size);
  bool WaitFor(Socket socket, bool toWrite);

  std::vector<Script> m_scripts;
  Socket m_listener = -1;
  std::uint16_t m_port = 0;
  std::atomic<bool> m_stopping{false};
  std::atomic<int> m_connections{0};
  std::atomic<std::uint64_t> m_sent{0};
  mutable std::mutex m_mutex;
  std::vector<std::string> m_requests;
  std::vector<std::thread> m_players;
  std::thread m_thread;
};

}  // namespace velandoc::test
