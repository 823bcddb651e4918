#include "platform/posix/http/transfer.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/posix/http/ascii_case.h"
#include "platform/posix/http/error_map.h"
#include "platform/posix/http/name_override.h"

namespace velandoc::http {
namespace {

// libcurl reads in pieces of this size; with twice as much it is half as fast.
constexpr long kPieceBytes = 64 * 1024;
// And sends in such, all that is gathered at once: fewer wake-ups of the peer than by 64 KiB.
constexpr long kSendBytes = Transfer::kBufferedBytes;
// What is worth reading away to keep a connection. A longer rest costs more than a new connection.
constexpr std::size_t kDrainBytes = 256 * 1024;
constexpr std::size_t kShortAnswerBytes = 16 * 1024;
constexpr std::chrono::milliseconds kDrainPatience{1000};
constexpr std::chrono::milliseconds kLongestPoll{1000};

bool HasHeader(const TransferPlan& plan, std::string_view name) {
  return plan.headers.Find(name) != nullptr;
}

}  // namespace

void HeaderList::Append(const char* line) {
  curl_slist* longer = curl_slist_append(m_lines, line);
  if (longer == nullptr) throw std::bad_alloc();
  m_lines = longer;
}

Transfer::Transfer(const TransferPlan& plan)
    : m_certificate(std::make_shared<CertificateCheck>()),
      m_handle(ConnectionPool::ForThread(plan.ignoreFlags & kCertificateIgnoreFlags)),
      m_easy(m_handle.Get()) {
  m_certificate->host = plan.server.host;
  m_certificate->ignoreFlags = plan.ignoreFlags;
  m_streamed = plan.bodyKind == BodyKind::kStreamed;
  m_isPlainDownload =
      plan.bodyKind == BodyKind::kNone && plan.verb != "HEAD" && !plan.server.secure && !plan.proxy;
  m_unwritten = plan.bodyLength;
  SetOptions(plan);
  SetHeaders(plan);
}

Transfer::~Transfer() {
  // Without waiting: a short answer lies in the socket already, and for a longer one a new
  // connection is cheaper.
  if (m_headIsFinal && !m_done && !m_direct) DiscardRest(std::chrono::milliseconds(0));
  m_handle.Leave();
}

void Transfer::SetOptions(const TransferPlan& plan) {
  const std::string url = Origin(plan.server) + plan.path;
  curl_easy_setopt(m_easy, CURLOPT_PRIVATE, this);
  curl_easy_setopt(m_easy, CURLOPT_URL, url.c_str());
  curl_easy_setopt(m_easy, CURLOPT_PATH_AS_IS, 1L);
  curl_easy_setopt(m_easy, CURLOPT_REQUEST_TARGET, plan.target.c_str());
  curl_easy_setopt(m_easy, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(m_easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  curl_easy_setopt(m_easy, CURLOPT_FOLLOWLOCATION, 0L);
  curl_easy_setopt(m_easy, CURLOPT_BUFFERSIZE, kPieceBytes);
  curl_easy_setopt(m_easy, CURLOPT_UPLOAD_BUFFERSIZE, kSendBytes);
  curl_easy_setopt(m_easy, CURLOPT_NOPROGRESS, 1L);
  curl_easy_setopt(m_easy, CURLOPT_CONNECTTIMEOUT_MS,
                   static_cast<long>(m_deadlines.connect.count()));
  curl_easy_setopt(m_easy, CURLOPT_HEADERFUNCTION, &OnHeader);
  curl_easy_setopt(m_easy, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(m_easy, CURLOPT_WRITEFUNCTION, &OnBody);
  curl_easy_setopt(m_easy, CURLOPT_WRITEDATA, this);

  if (plan.bodyKind == BodyKind::kStreamed) {
    curl_easy_setopt(m_easy, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(m_easy, CURLOPT_READFUNCTION, &OnUpload);
    curl_easy_setopt(m_easy, CURLOPT_READDATA, this);
    curl_easy_setopt(m_easy, CURLOPT_SEEKFUNCTION, &OnSeek);
    curl_easy_setopt(m_easy, CURLOPT_SEEKDATA, this);
    if (plan.bodyLength) {
      curl_easy_setopt(m_easy, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(*plan.bodyLength));
    }
    m_gathered.reserve(
        std::min<std::uint64_t>(plan.bodyLength.value_or(kBufferedBytes), kBufferedBytes));
  } else if (plan.bodyKind == BodyKind::kMemory) {
    // Also for an empty body, which needs its "Content-Length: 0".
    curl_easy_setopt(m_easy, CURLOPT_POST, 1L);
    curl_easy_setopt(m_easy, CURLOPT_POSTFIELDSIZE_LARGE,
                     static_cast<curl_off_t>(plan.body.size()));
    curl_easy_setopt(m_easy, CURLOPT_POSTFIELDS, plan.body.empty() ? "" : plan.body.data());
  }
  if (plan.verb == "HEAD") curl_easy_setopt(m_easy, CURLOPT_NOBODY, 1L);
  curl_easy_setopt(m_easy, CURLOPT_CUSTOMREQUEST, plan.verb.c_str());

  if (plan.proxy) {
    curl_easy_setopt(m_easy, CURLOPT_PROXY, plan.proxy->url.c_str());
    // Whether the proxy serves this host is decided already.
    curl_easy_setopt(m_easy, CURLOPT_NOPROXY, "");
    curl_easy_setopt(m_easy, CURLOPT_PROXYAUTH, CURLAUTH_ANY);
    m_negotiates = plan.proxy->isHttp && (plan.server.secure || plan.proxy->HasLogin());
  } else {
    curl_easy_setopt(m_easy, CURLOPT_PROXY, "");
    // Through a proxy it is the proxy that looks names up.
    if (const auto connectTo = ConnectToText(plan.server.host)) {
      m_connectTo.Append(connectTo->c_str());
      curl_easy_setopt(m_easy, CURLOPT_CONNECT_TO, m_connectTo.Get());
    }
  }
  if (plan.proxyLogin) {
    curl_easy_setopt(m_easy, CURLOPT_PROXYUSERNAME, plan.proxyLogin->user.c_str());
    curl_easy_setopt(m_easy, CURLOPT_PROXYPASSWORD, plan.proxyLogin->password.c_str());
    curl_easy_setopt(m_easy, CURLOPT_PROXYAUTH, plan.proxyLogin->scheme);
    m_negotiates = true;
  }
  if (plan.serverLogin) {
    curl_easy_setopt(m_easy, CURLOPT_USERNAME, plan.serverLogin->user.c_str());
    curl_easy_setopt(m_easy, CURLOPT_PASSWORD, plan.serverLogin->password.c_str());
    curl_easy_setopt(m_easy, CURLOPT_HTTPAUTH, plan.serverLogin->scheme);
    m_negotiates = true;
  }
  InstallCertificateCheck(m_easy, m_certificate);
}

void Transfer::SetHeaders(const TransferPlan& plan) {
  // libcurl puts its own headers first. A name alone takes its header out, also for Host; the
  // request's own lines then stand in their order.
  m_headerList.Append("Host:");
  m_headerList.Append("Expect:");
  if (!HasHeader(plan, "Accept")) m_headerList.Append("Accept:");
  if (!HasHeader(plan, "User-Agent")) m_headerList.Append("User-Agent:");
  if (!HasHeader(plan, "Content-Type")) m_headerList.Append("Content-Type:");
  if (plan.proxy) {
    if (plan.server.secure) {
      // What the server is told is not for the proxy's eyes.
      curl_easy_setopt(m_easy, CURLOPT_HEADEROPT, static_cast<long>(CURLHEADER_SEPARATE));
      m_proxyHeaderList.Append("Proxy-Connection:");
      curl_easy_setopt(m_easy, CURLOPT_PROXYHEADER, m_proxyHeaderList.Get());
    } else {
      m_headerList.Append("Proxy-Connection:");
    }
  }
  std::string text;
  for (const HeaderLine& line : plan.headers.Lines()) {
    // "Name;" is libcurl's way to write a header with no value.
    text = line.name;
    text += line.value.empty() ? ";" : ": ";
    text += line.value;
    m_headerList.Append(text.c_str());
  }
  curl_easy_setopt(m_easy, CURLOPT_HTTPHEADER, m_headerList.Get());
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

/// Called when a transfer that was paused goes on: the one moment at which libcurl tells a running
/// transfer's socket.
int Transfer::OnSocket(CURL* easy, curl_socket_t socket, int what, void*, void*) {
  char* owner = nullptr;
  curl_easy_getinfo(easy, CURLINFO_PRIVATE, &owner);
  if (what != CURL_POLL_REMOVE) reinterpret_cast<Transfer*>(owner)->m_socket = socket;
  return 0;
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
  auto* transfer = static_cast<Transfer*>(self);
  // Only the start can be gone back to, and only while all of it is held: enough for a kept
  // connection that turns out to be closed.
  if (origin != SEEK_SET || offset != 0 || transfer->m_dropped != 0) return CURL_SEEKFUNC_FAIL;
  transfer->m_gatheredBegin = 0;
  return CURL_SEEKFUNC_OK;
}

void Transfer::TakeHeaderLine(std::string_view line) {
  m_moved = true;
  // Behind the final head come only the trailers of a chunked body.
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
    m_headIsFinal = !m_negotiates;
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
  m_bodyTaken += size;
  if (m_discard) {
    m_discarded += size;
    return m_discarded > kDrainBytes ? 0 : size;
  }
  const std::size_t direct = std::min(size, m_targetRoom);
  if (direct != 0) {
    std::memcpy(m_target, data, direct);
    m_target += direct;
    m_targetRoom -= direct;
  }
  if (direct < size) {
    m_received.insert(m_received.end(), data + direct, data + size);
    // The rest of the piece that libcurl read is still handed over; it takes no further piece until
    // resumed. A short answer is taken whole, though: a pause costs more than its bytes.
    if (!m_receivePaused && m_received.size() > kShortAnswerBytes) {
      m_receivePaused = true;
      Pause();
    }
  }
  return size;
}

std::size_t Transfer::GiveBody(char* buffer, std::size_t size) {
  m_moved = true;
  m_bodyBegun = true;
  if (const std::size_t held = m_gathered.size() - m_gatheredBegin; held != 0) {
    const std::size_t count = std::min(size, held);
    std::memcpy(buffer, m_gathered.data() + m_gatheredBegin, count);
    m_gatheredBegin += count;
    return count;
  }
  if (m_sourceSize != 0) {
    const std::size_t count = std::min(size, m_sourceSize);
    std::memcpy(buffer, m_source, count);
    m_source += count;
    m_sourceSize -= count;
    m_dropped += count;
    return count;
  }
  if (m_bodyEnded) return 0;
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

void Transfer::CollectResults() {
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(m_handle.Multi(), &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    // The multi handle is the thread's; the message may be another transfer's.
    char* owner = nullptr;
    curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &owner);
    reinterpret_cast<Transfer*>(owner)->Finish(message->data.result);
  }
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
  if (const DWORD problem = m_certificate->FirstProblem(); problem != ERROR_SUCCESS) {
    m_error = problem;
  } else if (m_certificate->clientCertificateWanted && result != CURLE_OPERATION_TIMEDOUT) {
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
  int running = 0;
  curl_multi_perform(m_handle.Multi(), &running);
  CollectResults();
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
  curl_multi_poll(m_handle.Multi(), nullptr, 0,
                  static_cast<int>(std::min(left, kLongestPoll).count()), nullptr);
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
  curl_multi_setopt(m_handle.Multi(), CURLMOPT_SOCKETFUNCTION, &OnSocket);
  if (!m_handle.Join()) return ERROR_INTERNET_INTERNAL_ERROR;
  return DriveUntil(condition);
}

DWORD Transfer::Start() {
  return BeginAndDriveUntil([this] { return m_headIsFinal || (m_streamed && m_bodyBegun); });
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
  if (!m_streamed || m_bodyEnded) return ERROR_INTERNET_INCORRECT_HANDLE_STATE;
  if (m_unwritten && size > *m_unwritten) return ERROR_INVALID_PARAMETER;
  if (m_done && m_error != ERROR_SUCCESS) return m_error;
  if (m_gathered.size() + size <= kBufferedBytes) {
    m_gathered.insert(m_gathered.end(), data, data + size);
  } else {
    // Time counts from here: between two writes it is the caller that keeps still.
    m_lastMove = Clock::now();
    ResumeSending();
    DWORD error = DriveUntil([this] { return IsGatheredSent() || HasStoppedSending(); });
    if (error != ERROR_SUCCESS) return error;
    DropSent();
    if (size < kBufferedBytes) {
      m_gathered.assign(data, data + size);
    } else {
      m_source = data;
      m_sourceSize = size;
      ResumeSending();
      error = DriveUntil([this] { return m_sourceSize == 0 || HasStoppedSending(); });
      m_sourceSize = 0;
      if (error != ERROR_SUCCESS) return error;
    }
  }
  if (m_unwritten) *m_unwritten -= size;
  return ERROR_SUCCESS;
}

void Transfer::DropSent() {
  m_dropped += m_gathered.size();
  m_gathered.clear();
  m_gatheredBegin = 0;
}

DWORD Transfer::EndBody() {
  if (!m_streamed || m_bodyEnded) return ERROR_INTERNET_INCORRECT_HANDLE_STATE;
  m_bodyEnded = true;
  if (m_unwritten.value_or(0) != 0 && !m_done && !HasStoppedSending()) {
    // The peer would wait for the rest until it gives up.
    Abort(ERROR_INTERNET_CONNECTION_ABORTED);
    return m_error;
  }
  m_lastMove = Clock::now();
  ResumeSending();
  return DriveUntil([this] { return m_headIsFinal; });
}

DWORD Transfer::Available(std::size_t* count) {
  *count = m_received.size() - m_receivedBegin;
  if (*count != 0) return ERROR_SUCCESS;
  if (m_isPlainDownload && !m_direct) TakeOverSocket();
  if (m_direct) {
    if (m_error == ERROR_SUCCESS) m_error = m_direct->Available(count);
    return m_error;
  }
  m_lastMove = Clock::now();
  ResumeReceiving();
  const DWORD error = DriveUntil([this] { return m_receivedBegin != m_received.size(); });
  *count = m_received.size() - m_receivedBegin;
  return *count != 0 ? ERROR_SUCCESS : error;
}

DWORD Transfer::Read(char* buffer, std::size_t size, std::size_t* read) {
  std::size_t count = std::min(size, m_received.size() - m_receivedBegin);
  if (count != 0) {
    std::memcpy(buffer, m_received.data() + m_receivedBegin, count);
    m_receivedBegin += count;
  }
  if (m_receivedBegin == m_received.size()) {
    m_received.clear();
    m_receivedBegin = 0;
  }
  DWORD error = ERROR_SUCCESS;
  if (count < size && m_isPlainDownload && !m_direct) TakeOverSocket();
  if (count < size && m_direct) {
    std::size_t more = 0;
    if (m_error == ERROR_SUCCESS) m_error = m_direct->Read(buffer + count, size - count, &more);
    error = m_error;
    count += more;
  } else if (count < size) {
    m_target = buffer + count;
    m_targetRoom = size - count;
    m_lastMove = Clock::now();
    ResumeReceiving();
    error = DriveUntil([this] { return m_targetRoom == 0; });
    count = size - m_targetRoom;
    m_target = nullptr;
    m_targetRoom = 0;
  }
  *read = count;
  return count != 0 ? ERROR_SUCCESS : error;
}

void Transfer::TakeOverSocket() {
  if (m_done || !m_receivePaused || m_socket == CURL_SOCKET_BAD) return;
  // Asked once: what comes later is less.
  m_isPlainDownload = false;
  curl_off_t length = -1;
  curl_off_t read = 0;
  curl_easy_getinfo(m_easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
  curl_easy_getinfo(m_easy, CURLINFO_SIZE_DOWNLOAD_T, &read);
  const std::string* coding = m_head.headers.Find("Transfer-Encoding");
  // Only if libcurl holds nothing back: then the socket's next byte is the body's next byte.
  if (coding != nullptr || length < 0 || static_cast<std::uint64_t>(read) != m_bodyTaken ||
      static_cast<std::uint64_t>(length) < m_bodyTaken) {
    return;
  }
  const std::uint64_t left = static_cast<std::uint64_t>(length) - m_bodyTaken;
  if (left >= DirectBody::kShortest) m_direct.emplace(m_socket, left, m_deadlines.silence);
}

void Transfer::Drain() { DiscardRest(kDrainPatience); }

void Transfer::DiscardRest(std::chrono::milliseconds patience) {
  m_discard = true;
  m_received.clear();
  m_receivedBegin = 0;
  ResumeReceiving();
  const Clock::time_point end = Clock::now() + patience;
  while (!m_done) {
    Step(false);
    if (m_done || m_moved) continue;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    if (left.count() <= 0) return;
    curl_multi_poll(m_handle.Multi(), nullptr, 0, static_cast<int>(left.count()), nullptr);
  }
}

}  // namespace velandoc::http
