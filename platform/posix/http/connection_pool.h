// What lives below the handles and outlasts them: sockets, TLS sessions and, where libcurl is of a
// release that is fit for it, easy handles, kept for each thread.
//
// A fresh session, connection and request then find the socket of the one before. A thread has one
// pool for each set of certificate problems that its requests let pass, so a connection made under
// looser rules never carries a request with stricter ones. A pool ends, and closes its sockets,
// when the thread has ended and the last request that used it is closed.
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "platform/posix/wininet_types.h"

namespace velandoc::http {

class EasyHandle;

class ConnectionPool {
 public:
  ConnectionPool();
  ~ConnectionPool();
  ConnectionPool(const ConnectionPool&) = delete;
  ConnectionPool& operator=(const ConnectionPool&) = delete;

  /// The calling thread's pool for these SECURITY_FLAG_IGNORE bits.
  static std::shared_ptr<ConnectionPool> ForThread(DWORD ignoreFlags);
  /// Closes the calling thread's idle connections.
  static void ForgetThread();

 private:
  friend class EasyHandle;
  CURL* TakeEasy();
  void GiveBackEasy(CURL* easy, bool hasFailed);
  /// One round of all transfers that have joined; those that ended find their result noted.
  void Perform();

  CURLM* m_multi;
  CURLSH* m_share;
  std::vector<CURL*> m_idle;
  // libcurl has handles of its own in a multi handle; only those listed here are ours.
  std::vector<EasyHandle*> m_joined;
};

/// An easy handle of a pool, with no options set but the shared session cache. It goes back to the
/// pool in the end, unless its transfer failed: libcurl keeps the error's number of the system, and
/// does not promise to forget it.
class EasyHandle {
 public:
  explicit EasyHandle(std::shared_ptr<ConnectionPool> pool);
  ~EasyHandle();
  EasyHandle(const EasyHandle&) = delete;
  EasyHandle& operator=(const EasyHandle&) = delete;

  CURL* Get() const { return m_easy; }
  /// Starts and ends its part in the pool's multi handle; ending early closes the connection.
  bool Join();
  void Leave();
  /// One round of the pool's transfers. Returns this transfer's result once, when it has ended, be
  /// it in this round or in one that another transfer asked for.
  std::optional<CURLcode> Perform();
  /// Until a peer of the pool's transfers did something, or the time is over.
  void Wait(std::chrono::milliseconds time);

 private:
  friend class ConnectionPool;
  std::shared_ptr<ConnectionPool> m_pool;
  CURL* m_easy;
  std::optional<CURLcode> m_result;
  bool m_joined = false;
  bool m_hasFailed = false;
};

}  // namespace velandoc::http
