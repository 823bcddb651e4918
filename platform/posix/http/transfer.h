// One request and its answer over libcurl, driven by the calling thread: pushed body, pulled
// answer.
//
// Of a request's body at most kBufferedBytes are held, and of an answer's little more than one
// piece that libcurl read; a body of any length passes through. Nothing runs between two calls, so
// a slow caller slows the peer and no thread is needed.
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/posix/http/certificate_check.h"
#include "platform/posix/http/connection_pool.h"
#include "platform/posix/http/deadlines.h"
#include "platform/posix/http/direct_body.h"
#include "platform/posix/http/header_block.h"
#include "platform/posix/http/proxy.h"

namespace velandoc::http {

/// User name and password with the one scheme that they are for (a CURLAUTH bit).
struct Login {
  unsigned long scheme = 0;
  std::string user;
  std::string password;
};

enum class BodyKind { kNone, kMemory, kStreamed };

/// Read while a transfer is made, and not kept but for the body.
struct TransferPlan {
  const Endpoint& server;
  const std::string& target;  // the request line's, also the absolute form for a proxy
  const std::string& path;    // the same without an origin
  const std::string& verb;
  const HeaderBlock& headers;  // in their order on the wire
  BodyKind bodyKind = BodyKind::kNone;
  std::string_view body;                    // kMemory; must live as long as the transfer
  std::optional<std::uint64_t> bodyLength;  // kStreamed; none: chunked
  const Proxy* proxy = nullptr;             // null: none
  const Login* serverLogin = nullptr;       // likewise
  const Login* proxyLogin = nullptr;
  DWORD ignoreFlags = 0;
};

/// libcurl's list of header lines.
class HeaderList {
 public:
  HeaderList() = default;
  ~HeaderList() { curl_slist_free_all(m_lines); }
  HeaderList(const HeaderList&) = delete;
  HeaderList& operator=(const HeaderList&) = delete;
  void Append(const char* line);
  curl_slist* Get() const { return m_lines; }

 private:
  curl_slist* m_lines = nullptr;
};

class Transfer {
 public:
  static constexpr std::size_t kBufferedBytes = 256 * 1024;

  /// Builds the request; nothing is sent yet.
  explicit Transfer(const TransferPlan& plan);
  /// Ends the exchange. What is left of a short answer is read away first, so that the connection
  /// can serve again.
  ~Transfer();
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  /// All return ERROR_SUCCESS or a number of error_map.h.

  /// Until the final head is there (1xx passed over), or for a streamed body until the peer takes
  /// its first byte.
  DWORD Start();
  /// Until the connection stands and the request goes out, or an answer comes before that.
  DWORD StartSending();
  /// After StartSending, for a body that is not streamed: until the final head is there.
  DWORD AwaitHead();
  DWORD Write(const char* data, std::size_t size);
  /// Ends a streamed body and waits for the final head.
  DWORD EndBody();
  /// Waits for the body's next bytes and counts them; 0 with ERROR_SUCCESS is its end.
  DWORD Available(std::size_t* count);
  /// Fills the buffer unless the answer ends before. What came before a failure is given out first.
  DWORD Read(char* buffer, std::size_t size, std::size_t* read);
  /// Reads away the rest of a short body, so that the connection can serve again. Waits for the
  /// peer, but not for long.
  void Drain();

  bool HasHead() const { return m_headIsFinal; }
  const ResponseHead& Head() const { return m_head; }
  const CertificateCheck& Certificate() const { return *m_certificate; }

 private:
  using Clock = std::chrono::steady_clock;

  static std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t OnBody(char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t OnUpload(char* buffer, std::size_t size, std::size_t count, void* self);
  static int OnSocket(CURL* easy, curl_socket_t socket, int what, void*, void*);
  static int OnRequest(void* self, char*, char*, int, int);
  static int OnSeek(void* self, curl_off_t offset, int origin);

  void SetOptions(const TransferPlan& plan);
  void SetHeaders(const TransferPlan& plan);
  void TakeHeaderLine(std::string_view line);
  std::size_t TakeBody(const char* data, std::size_t size);
  std::size_t GiveBody(char* buffer, std::size_t size);
  /// One round of libcurl; waits for the peer if `maySleep` and nothing happened.
  /// ERROR_INTERNET_TIMEOUT when the peer kept still for too long.
  DWORD Step(bool maySleep);
  void CollectResults();
  void Finish(CURLcode result);
  void Abort(DWORD error);
  template <class Condition>
  DWORD DriveUntil(Condition condition);
  template <class Condition>
  DWORD BeginAndDriveUntil(Condition condition);
  bool HasStoppedSending() const { return m_headIsFinal && m_head.status >= 300; }
  bool IsGatheredSent() const { return m_gatheredBegin == m_gathered.size(); }
  void DropSent();
  /// Goes on without libcurl if the rest of the body is long and comes as plain bytes.
  void TakeOverSocket();
  void DiscardRest(std::chrono::milliseconds patience);
  void Pause();
  void ResumeReceiving();
  void ResumeSending();

  std::shared_ptr<CertificateCheck> m_certificate;
  // In front of the easy handle, which refers to them until it is reset.
  HeaderList m_headerList;
  HeaderList m_proxyHeaderList;
  HeaderList m_connectTo;
  EasyHandle m_handle;
  CURL* m_easy;  // m_handle's
  bool m_done = false;
  DWORD m_error = ERROR_SUCCESS;
  bool m_requestBegun = false;
  bool m_moved = false;  // a callback ran since the latest round
  Deadlines m_deadlines = CurrentDeadlines();
  Clock::time_point m_lastMove = Clock::now();
  curl_off_t m_sentAtLastMove = 0;

  // The answer.
  ResponseHead m_head;
  bool m_headBlockComplete = false;  // the block may still be one of a login's steps
  bool m_headIsFinal = false;
  bool m_negotiates = false;  // a head may be a step of a login or of a tunnel, not yet the answer
  bool m_isPlainDownload = false;  // nothing to send, no TLS up to the peer
  std::uint64_t m_bodyTaken = 0;   // handed over by libcurl
  curl_socket_t m_socket = CURL_SOCKET_BAD;
  std::optional<DirectBody> m_direct;
  std::vector<char> m_received;
  std::size_t m_receivedBegin = 0;
  bool m_receivePaused = false;
  bool m_discard = false;
  std::size_t m_discarded = 0;
  char* m_target = nullptr;  // the caller's buffer during Read
  std::size_t m_targetRoom = 0;

  // The streamed body. m_gathered[m_gatheredBegin..] is still to be sent, then m_source.
  bool m_streamed = false;
  std::optional<std::uint64_t> m_unwritten;  // bytes still to come of a declared length
  std::vector<char> m_gathered;
  std::size_t m_gatheredBegin = 0;
  const char* m_source = nullptr;
  std::size_t m_sourceSize = 0;
  std::uint64_t m_dropped = 0;  // bytes given to libcurl that are held no more
  bool m_bodyBegun = false;     // libcurl has asked for the first byte
  bool m_bodyEnded = false;
  bool m_sendPaused = false;
};

}  // namespace velandoc::http
