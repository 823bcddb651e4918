// One request and its answer over libcurl, driven by the calling thread: pushed body, pulled
// answer.
//
// Of a streamed body a few hundred kilobytes are held, and of an answer little more than one piece
// that libcurl read; a body of any length passes through. Nothing runs between two calls, so a slow
// caller slows the peer and no thread is needed.
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <cstddef>
#include <string_view>

#include "platform/posix/http/connection_pool.h"
#include "platform/posix/http/deadlines.h"
#include "platform/posix/http/download_body.h"
#include "platform/posix/http/header_block.h"
#include "platform/posix/http/request_options.h"
#include "platform/posix/http/upload_body.h"

namespace velandoc::http {

class Transfer {
 public:
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

  const ResponseHead& Head() const { return m_head; }
  const CertificateCheck& Certificate() const { return m_options.Certificate(); }

 private:
  using Clock = std::chrono::steady_clock;

  static std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t OnBody(char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t OnUpload(char* buffer, std::size_t size, std::size_t count, void* self);
  static int OnRequest(void* self, char*, char*, int, int);
  static int OnSeek(void* self, curl_off_t offset, int origin);

  void SetCallbacks();
  void TakeHeaderLine(std::string_view line);
  std::size_t TakeBody(const char* data, std::size_t size);
  std::size_t GiveBody(char* buffer, std::size_t size);
  /// One round of libcurl; waits for the peer if `maySleep` and nothing happened.
  /// ERROR_INTERNET_TIMEOUT when the peer kept still for too long.
  DWORD Step(bool maySleep);
  void Finish(CURLcode result);
  void Abort(DWORD error);
  template <class Condition>
  DWORD DriveUntil(Condition condition);
  template <class Condition>
  DWORD BeginAndDriveUntil(Condition condition);
  bool HasStoppedSending() const { return m_headIsFinal && m_head.status >= 300; }
  void DiscardRest(std::chrono::milliseconds patience);
  void Pause();
  void ResumeReceiving();
  void ResumeSending();

  Deadlines m_deadlines = CurrentDeadlines();
  EasyHandle m_handle;
  CURL* m_easy;  // m_handle's
  RequestOptions m_options;
  bool m_done = false;
  DWORD m_error = ERROR_SUCCESS;
  bool m_requestBegun = false;
  bool m_moved = false;  // a callback ran since the latest round
  Clock::time_point m_lastMove = Clock::now();
  curl_off_t m_sentAtLastMove = 0;

  ResponseHead m_head;
  bool m_headBlockComplete = false;  // the block may still be one of a login's steps
  bool m_headIsFinal = false;
  DownloadBody m_answer;
  bool m_receivePaused = false;
  bool m_discard = false;
  std::size_t m_discarded = 0;

  bool m_streamed;
  UploadBody m_body;
  bool m_sendPaused = false;
};

}  // namespace velandoc::http
