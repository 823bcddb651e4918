#include "platform/posix/http/transfer.h"

#include <algorithm>
#include <new>

#include "platform/posix/http/ascii_case.h"
#include "platform/posix/http/error_map.h"

namespace velandoc::http {
namespace {

// What is worth reading away to keep a connection. A longer rest costs more than a new connection.
constexpr std::size_t kDrainBytes = 256 * 1024;
constexpr std::chrono::milliseconds kDrainPatience{1000};
constexpr std::chrono::milliseconds kLongestPoll{1000};

}  // namespace

Transfer::Transfer(const TransferPlan& plan)
    : m_handle(ConnectionPool::ForThread(plan.ignoreFlags & kCertificateIgnoreFlags)),
      m_easy(m_handle.Get()),
      m_options(m_easy, plan, m_deadlines),
      m_streamed(plan.bodyKind == BodyKind::kStreamed) {
  if (m_streamed) m_body = UploadBody(plan.bodyLength);
  SetCallbacks();
}

Transfer::~Transfer() {
  // Without waiting: a short answer lies in the socket already, and for a longer one a new
  // connection is cheaper.
  if (m_headIsFinal && !m_done) DiscardRest(std::chrono::milliseconds(0));
  m_handle.Leave();
}

void Transfer::SetCallbacks() {
  curl_easy_setopt(m_easy, CURLOPT_HEADERFUNCTION, &OnHeader);
  curl_easy_setopt(m_easy, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(m_easy, CURLOPT_WRITEFUNCTION, &OnBody);
  curl_easy_setopt(m_easy, CURLOPT_WRITEDATA, this);
  if (!m_streamed) return;
  curl_easy_setopt(m_easy, CURLOPT_READFUNCTION, &OnUpload);
  curl_easy_setopt(m_easy, CURLOPT_READDATA, this);
  curl_easy_setopt(m_easy, CURLOPT_SEEKFUNCTION, &OnSeek);
  curl_easy_setopt(m_easy, CURLOPT_SEEKDATA, this);
}

std::size_t Transfer::OnHeader(char* data, std::size_t size, std::size_t count, void* self) {
  try {
    static_cast<Transfer*>(self)->TakeHeaderLine(std::string_view(data, size * count));
    return size * count;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

std::size_t Transfer::OnBody(char* data, std::size_t size, std::size_t count, void* self) {
  try {
    return static_cast<Transfer*>(self)->TakeBody(data, size * count);
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

std::size_t Transfer::OnUpload(char* buffer, std::size_t size, std::size_t count, void* self) {
  return static_cast<Transfer*>(self)->GiveBody(buffer, size * count);
}

/// Called when the connection stands, TLS and tunnel included, and the request is about to be
/// written: in the same round of libcurl.
int Transfer::OnRequest(void* self, char*, char*, int, int) {
  auto* transfer = static_cast<Transfer*>(self);
  transfer->m_requestBegun = true;
  transfer->m_moved = true;
  return CURL_PREREQFUNC_OK;
}

int Transfer::OnSeek(void* self, curl_off_t offset, int origin) {
  const bool isStart = origin == SEEK_SET && offset == 0;
  const bool isBack = isStart && static_cast<Transfer*>(self)->m_body.Rewind();
  return isBack ? CURL_SEEKFUNC_OK : CURL_SEEKFUNC_FAIL;
}

void Transfer::TakeHeaderLine(std::string_view line) {
  m_moved = true;
  // After the final head only the trailers of a chunked body come.
  if (m_headIsFinal) return;
  const bool folded = line.starts_with(' ') || line.starts_with('\t');
  const std::string_view text = TrimBlanks(line.substr(0, line.find('\n')));
  if (line.starts_with("HTTP/") && (m_head.statusLine.empty() || m_headBlockComplete)) {
    m_head.SetStatusLine(text);
    m_headBlockComplete = false;
    return;
  }
  if (text.empty()) {
    if (m_head.status < 200) {
      m_head.Clear();  // an interim answer
      return;
    }
    m_headBlockComplete = true;
    m_headIsFinal = !m_options.MayTakeSteps();
    return;
  }
  if (folded) {
    m_head.headers.ContinueLast(text);
    return;
  }
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) return;
  m_head.headers.Append(TrimBlanks(text.substr(0, colon)), TrimBlanks(text.substr(colon + 1)));
}

std::size_t Transfer::TakeBody(const char* data, std::size_t size) {
  m_moved = true;
  // libcurl takes a first line that no status can be read from for an answer's, too.
  if (!m_headBlockComplete) return 0;
  m_headIsFinal = true;
  if (m_discard) {
    m_discarded += size;
    return m_discarded > kDrainBytes ? 0 : size;
  }
  m_answer.Take(data, size);
  // libcurl may still hand over the rest of what it has read; all of it is taken.
  if (m_answer.IsFull() && !m_receivePaused) {
    m_receivePaused = true;
    Pause();
  }
  return size;
}

std::size_t Transfer::GiveBody(char* buffer, std::size_t size) {
  m_moved = true;
  const std::size_t count = m_body.Give(buffer, size);
  if (count != 0 || m_body.HasEnded()) return count;
  m_sendPaused = true;
  return CURL_READFUNC_PAUSE;
}

void Transfer::Pause() {
  const int paused = (m_receivePaused ? CURLPAUSE_RECV : 0) | (m_sendPaused ? CURLPAUSE_SEND : 0);
  curl_easy_pause(m_easy, paused);
}

void Transfer::ResumeReceiving() {
  if (!m_receivePaused || m_done) return;
  m_receivePaused = false;
  Pause();
}

void Transfer::ResumeSending() {
  if (!m_sendPaused || m_done) return;
  m_sendPaused = false;
  Pause();
}

void Transfer::Finish(CURLcode result) {
  m_done = true;
  m_moved = true;
  if (result == CURLE_OK) {
    if (m_headBlockComplete) m_headIsFinal = true;
    if (!m_headIsFinal) m_error = ERROR_HTTP_INVALID_SERVER_RESPONSE;
    return;
  }
  long tunnelStatus = 0;
  curl_easy_getinfo(m_easy, CURLINFO_HTTP_CONNECTCODE, &tunnelStatus);
  const bool loginFailed = result == CURLE_AUTH_ERROR && m_headBlockComplete;
  if (!m_headIsFinal && (loginFailed || (tunnelStatus == 407 && m_head.status == 407))) {
    // No ticket for this server, or a proxy that wants a login before it makes the tunnel: an
    // answer, not a failure.
    m_headIsFinal = true;
    return;
  }
  long reason = 0;
  curl_easy_getinfo(m_easy, CURLINFO_OS_ERRNO, &reason);
  m_error = ErrorOf(result, reason);
  if (m_headIsFinal) return;
  if (result == CURLE_WRITE_ERROR) m_error = ERROR_HTTP_INVALID_SERVER_RESPONSE;
  if (const DWORD problem = Certificate().FirstProblem(); problem != ERROR_SUCCESS) {
    m_error = problem;
  } else if (Certificate().clientCertificateWanted && result != CURLE_OPERATION_TIMEDOUT) {
    m_error = ERROR_INTERNET_CLIENT_AUTH_CERT_NEEDED;
  }
}

void Transfer::Abort(DWORD error) {
  m_handle.Leave();
  m_done = true;
  m_error = error;
}

DWORD Transfer::Step(bool maySleep) {
  m_moved = false;
  if (const auto result = m_handle.Perform()) Finish(*result);
  const Clock::time_point now = Clock::now();
  if (m_moved) {
    m_lastMove = now;
    return ERROR_SUCCESS;
  }
  if (!maySleep) return ERROR_SUCCESS;
  if (now - m_lastMove >= m_deadlines.silence) {
    // A body from memory is sent without a callback; its progress counts as well.
    curl_off_t sent = 0;
    curl_easy_getinfo(m_easy, CURLINFO_SIZE_UPLOAD_T, &sent);
    if (sent == m_sentAtLastMove) {
      Abort(ERROR_INTERNET_TIMEOUT);
      return m_error;
    }
    m_sentAtLastMove = sent;
    m_lastMove = now;
  }
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(m_lastMove + m_deadlines.silence - now);
  m_handle.Wait(std::min(left, kLongestPoll));
  return ERROR_SUCCESS;
}

template <class Condition>
DWORD Transfer::DriveUntil(Condition condition) {
  while (!condition()) {
    if (m_done) return m_error;
    Step(true);
  }
  return ERROR_SUCCESS;
}

template <class Condition>
DWORD Transfer::BeginAndDriveUntil(Condition condition) {
  m_lastMove = Clock::now();
  if (!m_handle.Join()) return ERROR_INTERNET_INTERNAL_ERROR;
  return DriveUntil(condition);
}

DWORD Transfer::Start() {
  return BeginAndDriveUntil([this] { return m_headIsFinal || (m_streamed && m_body.HasBegun()); });
}

DWORD Transfer::StartSending() {
  curl_easy_setopt(m_easy, CURLOPT_PREREQFUNCTION, &OnRequest);
  curl_easy_setopt(m_easy, CURLOPT_PREREQDATA, this);
  return BeginAndDriveUntil([this] { return m_headIsFinal || m_requestBegun; });
}

DWORD Transfer::AwaitHead() {
  m_lastMove = Clock::now();
  return DriveUntil([this] { return m_headIsFinal; });
}

DWORD Transfer::Write(const char* data, std::size_t size) {
  if (!m_streamed || m_body.HasEnded()) return ERROR_INTERNET_INCORRECT_HANDLE_STATE;
  if (!m_body.HasRoomFor(size)) return ERROR_INVALID_PARAMETER;
  if (m_done && m_error != ERROR_SUCCESS) return m_error;
  if (m_body.CanGather(size)) {
    m_body.Gather(data, size);
    return ERROR_SUCCESS;
  }
  // Time counts from here: between two writes it is the caller that keeps still.
  m_lastMove = Clock::now();
  ResumeSending();
  DWORD error = DriveUntil([this] { return m_body.IsGatheredSent() || HasStoppedSending(); });
  if (error != ERROR_SUCCESS) return error;
  m_body.DropSent();
  if (m_body.CanGather(size)) {
    m_body.Gather(data, size);
    return ERROR_SUCCESS;
  }
  m_body.Lend(data, size);
  ResumeSending();
  error = DriveUntil([this] { return m_body.IsLoanSent() || HasStoppedSending(); });
  m_body.EndLoan();
  return error;
}

DWORD Transfer::EndBody() {
  if (!m_streamed || m_body.HasEnded()) return ERROR_INTERNET_INCORRECT_HANDLE_STATE;
  m_body.End();
  if (!m_body.IsWhole() && !m_done && !HasStoppedSending()) {
    // The peer would wait for the rest until it gives up.
    Abort(ERROR_INTERNET_CONNECTION_ABORTED);
    return m_error;
  }
  m_lastMove = Clock::now();
  ResumeSending();
  return DriveUntil([this] { return m_headIsFinal; });
}

DWORD Transfer::Available(std::size_t* count) {
  DWORD error = ERROR_SUCCESS;
  if (m_answer.Held() == 0) {
    m_lastMove = Clock::now();
    ResumeReceiving();
    error = DriveUntil([this] { return m_answer.Held() != 0; });
  }
  *count = m_answer.Held();
  return *count != 0 ? ERROR_SUCCESS : error;
}

DWORD Transfer::Read(char* buffer, std::size_t size, std::size_t* read) {
  m_answer.BeginRead(buffer, size);
  DWORD error = ERROR_SUCCESS;
  if (!m_answer.IsServed()) {
    m_lastMove = Clock::now();
    ResumeReceiving();
    error = DriveUntil([this] { return m_answer.IsServed(); });
  }
  *read = m_answer.EndRead();
  return *read != 0 ? ERROR_SUCCESS : error;
}

void Transfer::Drain() { DiscardRest(kDrainPatience); }

void Transfer::DiscardRest(std::chrono::milliseconds patience) {
  m_discard = true;
  m_answer.Clear();
  ResumeReceiving();
  const Clock::time_point end = Clock::now() + patience;
  while (!m_done) {
    Step(false);
    if (m_done || m_moved) continue;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    if (left.count() <= 0) return;
    m_handle.Wait(left);
  }
}

}  // namespace velandoc::http
