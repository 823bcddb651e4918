#include "platform/posix/http/connection_pool.h"

#include <map>
#include <mutex>
#include <new>
#include <utility>

#include "platform/posix/http/keep_loaded.h"

namespace velandoc::http {
namespace {

// Enough for the servers that one thread talks to in turns; an older idle connection is closed for
// a newer one.
constexpr long kMaxIdleConnections = 16;
// Easy handles kept for reuse: making one costs more than all the options of a request.
constexpr std::size_t kMaxIdleEasy = 4;

/// Older releases of libcurl keep a pointer to the latest header of a handle's transfer beyond the
/// transfer, and follow it if the next one's first header line begins with a blank.
bool MayReuseEasy() {
  constexpr unsigned kMended = 0x080200;
  static const bool isMended = curl_version_info(CURLVERSION_NOW)->version_num >= kMended;
  return isMended;
}

using Pools = std::map<DWORD, std::shared_ptr<ConnectionPool>>;

Pools& ThreadPools() {
  thread_local Pools pools;
  return pools;
}

void InitialiseCurlOnce() {
  static std::once_flag once;
  std::call_once(once, [] {
    KeepLibraryLoaded();
    curl_global_init(CURL_GLOBAL_DEFAULT);
  });
}

}  // namespace

ConnectionPool::ConnectionPool() : m_multi(curl_multi_init()), m_share(curl_share_init()) {
  if (m_multi == nullptr || m_share == nullptr) {
    curl_multi_cleanup(m_multi);
    curl_share_cleanup(m_share);
    throw std::bad_alloc();
  }
  m_idle.reserve(kMaxIdleEasy);
  curl_multi_setopt(m_multi, CURLMOPT_MAXCONNECTS, kMaxIdleConnections);
  curl_multi_setopt(m_multi, CURLMOPT_PIPELINING, CURLPIPE_NOTHING);
  curl_share_setopt(m_share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
}

ConnectionPool::~ConnectionPool() {
  for (CURL* easy : m_idle) curl_easy_cleanup(easy);
  curl_multi_cleanup(m_multi);
  curl_share_cleanup(m_share);
}

std::shared_ptr<ConnectionPool> ConnectionPool::ForThread(DWORD ignoreFlags) {
  InitialiseCurlOnce();
  std::shared_ptr<ConnectionPool>& pool = ThreadPools()[ignoreFlags];
  if (pool == nullptr) pool = std::make_shared<ConnectionPool>();
  return pool;
}

void ConnectionPool::ForgetThread() { ThreadPools().clear(); }

CURL* ConnectionPool::TakeEasy() {
  CURL* easy = nullptr;
  if (m_idle.empty()) {
    easy = curl_easy_init();
  } else {
    easy = m_idle.back();
    m_idle.pop_back();
  }
  if (easy == nullptr) throw std::bad_alloc();
  curl_easy_setopt(easy, CURLOPT_SHARE, m_share);
  return easy;
}

void ConnectionPool::GiveBackEasy(CURL* easy, bool hasFailed) {
  if (hasFailed || m_idle.size() >= kMaxIdleEasy || !MayReuseEasy()) {
    curl_easy_cleanup(easy);
    return;
  }
  curl_easy_reset(easy);
  m_idle.push_back(easy);
}

void ConnectionPool::Perform() {
  int count = 0;
  curl_multi_perform(m_multi, &count);
  while (const CURLMsg* message = curl_multi_info_read(m_multi, &count)) {
    if (message->msg != CURLMSG_DONE) continue;
    for (EasyHandle* handle : m_joined) {
      if (handle->m_easy != message->easy_handle) continue;
      handle->m_result = message->data.result;
      handle->m_hasFailed = message->data.result != CURLE_OK;
    }
  }
}

EasyHandle::EasyHandle(std::shared_ptr<ConnectionPool> pool)
    : m_pool(std::move(pool)), m_easy(m_pool->TakeEasy()) {}

EasyHandle::~EasyHandle() {
  Leave();
  m_pool->GiveBackEasy(m_easy, m_hasFailed);
}

bool EasyHandle::Join() {
  m_pool->m_joined.push_back(this);
  m_joined = true;
  if (curl_multi_add_handle(m_pool->m_multi, m_easy) == CURLM_OK) return true;
  Leave();
  return false;
}

void EasyHandle::Leave() {
  if (!m_joined) return;
  curl_multi_remove_handle(m_pool->m_multi, m_easy);
  std::erase(m_pool->m_joined, this);
  m_joined = false;
}

std::optional<CURLcode> EasyHandle::Perform() {
  m_pool->Perform();
  return std::exchange(m_result, std::nullopt);
}

void EasyHandle::Wait(std::chrono::milliseconds time) {
  curl_multi_poll(m_pool->m_multi, nullptr, 0, static_cast<int>(time.count()), nullptr);
}

}  // namespace velandoc::http
