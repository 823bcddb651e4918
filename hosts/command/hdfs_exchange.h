// What went over the wire for one operation of HDFS, as far as a user may have to be told of it.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text.h"

namespace velandoc {

/// One request, with the redirects that the platform followed for it.
struct HdfsExchange {
  /// No more is kept of an answer: enough for the server's exception.
  static constexpr std::size_t kAnswerLimit = std::size_t{64} * 1024;

  std::string verb;
  std::string host;  // who was spoken to last
  unsigned port = 0;
  bool isDataNode = false;  // reached by a redirect, or at the address that an upload was sent to
  DWORD error = 0;          // the platform's, of what failed last; 0 for none
  int status = 0;           // of HTTP, 0 if no answer came
  std::string answer;       // of a refusal, and to anything but a GET
};

/// How many bytes of files have come and gone, for whoever shows it.
struct TransferCount {
  std::atomic<std::uint64_t> bytes{0};
};

/// What the requests of one thread have been since the log was cleared. Written by the watches over
/// the ports, whose handles belong to the thread that made them.
class HdfsExchangeLog {
 public:
  using Handle = void*;

  /// A request that is still open and is read on is not known any more.
  void Clear() { m_exchanges.clear(); }
  const std::vector<HdfsExchange>& Exchanges() const { return m_exchanges; }

  /// Where the bytes of files are counted; null for nowhere.
  void CountInto(TransferCount* count) { m_count = count; }
  TransferCount* Count() const { return m_count; }

  /// The server of the request that is opened next.
  void Connect(std::string host, unsigned port);
  /// `url` is the request's own, and empty if the platform does not say. A null handle is a request
  /// that could not be opened, for `error`.
  void Open(Handle request, std::string verb, WideString url, DWORD error);
  /// The end of a send, or of the wait for its answer: `status` for a success, else `error`. `url`
  /// is the one that the request has by then.
  void Answer(Handle request, int status, DWORD error, const WideString& url);
  /// What failed behind an answer or before one was waited for.
  void Fail(Handle request, DWORD error);
  void Read(Handle request, const void* bytes, std::size_t count);
  void Write(std::size_t count);
  void Close(Handle request);

  /// Of the calling thread: its own for as long as a ThreadExchangeLog stands. Of the threads
  /// without one only the first may make requests.
  static HdfsExchangeLog& OfThread();

 private:
  struct OpenRequest {
    Handle handle;
    std::size_t exchange;
    WideString url;
  };
  const OpenRequest* FindRequest(Handle request) const;
  HdfsExchange* Find(Handle request);

  std::vector<HdfsExchange> m_exchanges;
  std::vector<OpenRequest> m_requests;
  std::string m_host;
  unsigned m_port = 0;
  TransferCount* m_count = nullptr;
};

/// A log of its own for the thread that lives in this scope. (No object of the thread's storage:
/// the Windows compiler frees that before it ends what lies in it.)
class ThreadExchangeLog {
 public:
  ThreadExchangeLog();
  ~ThreadExchangeLog();
  ThreadExchangeLog(const ThreadExchangeLog&) = delete;
  ThreadExchangeLog& operator=(const ThreadExchangeLog&) = delete;

 private:
  HdfsExchangeLog m_log;
  HdfsExchangeLog* m_previous;
};

/// The number that a platform gives a status as.
int StatusNumber(WideView digits);

}  // namespace velandoc
