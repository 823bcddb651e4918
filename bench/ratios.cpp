// Whole operations of the component beside curl, in one run and against one server, as ratios of
// rates: above 1 the component is the faster. Rounds alternate between the two sides, and the
// median round counts.
//
//   ratios SERVER HTTP-PORT HTTPS-PORT [check|download|upload]...
//
// SERVER is what the rows call the server that listens on the ports: the stand-in, or for
// `download` and `upload` the nginx of beside_nginx.py. For `check` it is also the forward proxy by
// which http://docs.example.test/ is reached.

#include <curl/curl.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/plain_check.h"
#include "bench/side_by_side.h"
#include "platform/owners.h"
#include "platform/wininet.h"
#include "velandoc_idl.h"

using namespace velandoc;
using namespace velandoc::bench;

namespace {

constexpr int kChecksPerRound = 1000;
constexpr int kSocketCalls = 10000;
constexpr unsigned kBodySize = 1U << 30;
constexpr DWORD kStep = 8192;

int SocketsInTimeWait() {
  std::ifstream table("/proc/net/tcp");
  std::string line;
  int count = 0;
  while (std::getline(table, line)) {
    // "sl: local remote st": the state is the fourth column, 06 is TIME_WAIT.
    if (line.size() > 36 && line.compare(34, 2, "06") == 0) ++count;
  }
  return count;
}

// --- the probe ---

void CheckMany(int count) {
  Bstr url(OLESTR("http://docs.example.test/"));
  for (int i = 0; i < count; ++i) {
    ComPtr<IServerCheck> probe;
    CheckResult(CoCreateInstance(CLSID_ServerCheck, nullptr, CLSCTX_ALL, IID_IServerCheck,
                                 probe.ReceiveVoid()));
    VARIANT_BOOL is_server = VARIANT_FALSE;
    CheckResult(probe->Check(url.Get(), &is_server));
    Require(is_server == VARIANT_TRUE, "the probe says no");
  }
}

void Check(const Arguments& asked) {
  setenv("http_proxy", ("http://127.0.0.1:" + asked.httpPort).c_str(), 1);
  Compare(
      {"`ServerCheck.Check`, beside the same post, parsed and one XPath asked, in C", asked.server,
       kChecksPerRound, "calls/s"},
      [] { CheckMany(kChecksPerRound); },
      [] {
        Require(PlainChecks("http://docs.example.test/_vti_bin/lists.asmx", kChecksPerRound) ==
                    kChecksPerRound,
                "the check in C says no");
      });

  const int before = SocketsInTimeWait();
  CheckMany(kSocketCalls);
  PrintAlone("sockets in TIME_WAIT after " + std::to_string(kSocketCalls) +
                 " calls of `Check`, more than "
                 "before",
             asked.server, std::to_string(SocketsInTimeWait() - before));
}

// --- bodies ---

class Handle {
 public:
  explicit Handle(HINTERNET handle) : m_handle(handle) { Require(handle != nullptr, "no handle"); }
  ~Handle() { CurrentPort<WinInet>().InternetCloseHandle(m_handle); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  HINTERNET Get() const { return m_handle; }

 private:
  HINTERNET m_handle;
};

void Exchange(const std::string& port, LPCWSTR verb, const std::u16string& object,
              const std::function<void(WinInet&, HINTERNET)>& work) {
  WinInet& inet = CurrentPort<WinInet>();
  Handle session(inet.InternetOpenW(u"ratios", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
  Handle connect(inet.InternetConnectW(session.Get(), u"127.0.0.1",
                                       static_cast<WORD>(std::stoi(port)), nullptr, nullptr,
                                       INTERNET_SERVICE_HTTP, 0, 0));
  LPCWSTR accept[] = {u"text/*", nullptr};
  Handle request(inet.HttpOpenRequestW(
      connect.Get(), verb, object.c_str(), nullptr, nullptr, accept,
      INTERNET_FLAG_KEEP_CONNECTION | INTERNET_FLAG_NO_UI | INTERNET_FLAG_NO_CACHE_WRITE, 0));
  work(inet, request.Get());
}

void ReadToEnd(WinInet& inet, HINTERNET request, unsigned expected) {
  std::vector<char> buffer(kStep);
  unsigned long long total = 0;
  for (;;) {
    DWORD count = 0;
    Require(inet.InternetReadFile(request, buffer.data(), kStep, &count), "the read failed");
    if (count == 0) break;
    total += count;
  }
  Require(expected == 0 || total == expected, "the body is short");
}

void Download(const Arguments& asked) {
  const std::string size = std::to_string(kBodySize);
  const std::string url = "http://127.0.0.1:" + asked.httpPort + "/bytes/" + size;
  const std::u16string object = u"/bytes/" + std::u16string(size.begin(), size.end());
  Compare(
      {"1 GiB body read in steps of 8192 bytes, beside `curl -o /dev/null`", asked.server,
       kBodySize / 1e6, "MB/s"},
      [&] {
        Exchange(asked.httpPort, u"GET", object, [](WinInet& inet, HINTERNET request) {
          Require(inet.HttpSendRequestW(request, nullptr, 0, nullptr, 0), "the send failed");
          ReadToEnd(inet, request, kBodySize);
        });
      },
      [&] {
        RunCurl({"-o", "/dev/null", url});
      });
}

void Upload(const Arguments& asked) {
  const Folder folder;
  const std::string local = folder.File("f");
  std::ofstream(local).close();
  std::filesystem::resize_file(local, kBodySize);
  const std::string url = "http://127.0.0.1:" + asked.httpPort + "/sink";
  Compare(
      {"1 GiB body written in steps of 8192 bytes, beside `curl -T`", asked.server, kBodySize / 1e6,
       "MB/s"},
      [&] {
        Exchange(asked.httpPort, u"PUT", u"/sink", [](WinInet& inet, HINTERNET request) {
          const std::string size = std::to_string(kBodySize);
          const std::u16string header =
              u"Content-Length: " + std::u16string(size.begin(), size.end());
          INTERNET_BUFFERSW head{};
          head.dwStructSize = sizeof(head);
          head.lpcszHeader = header.c_str();
          head.dwHeadersLength = static_cast<DWORD>(header.size());
          Require(inet.HttpSendRequestExW(request, &head, nullptr, 0, 0), "the head failed");
          const std::vector<char> piece(kStep);
          for (unsigned sent = 0; sent < kBodySize; sent += kStep) {
            DWORD written = 0;
            Require(
                inet.InternetWriteFile(request, piece.data(), kStep, &written) && written == kStep,
                "the write failed");
          }
          Require(inet.HttpEndRequestW(request, nullptr, 0, 0), "the end failed");
          ReadToEnd(inet, request, 0);
        });
      },
      [&] {
        RunCurl({"-T", local, "-H", "Expect:", url});
      });
}

}  // namespace

int main(int argc, char** argv) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  try {
    const Arguments asked(argc, argv);
    PrintHeading();
    // The bodies first: the probe sets the proxy for the rest of the process.
    if (asked.Asks("download")) Download(asked);
    if (asked.Asks("upload")) Upload(asked);
    if (asked.Asks("check")) Check(asked);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "ratios: %s\n", error.what());
    return 1;
  } catch (const _com_error& error) {
    std::fprintf(stderr, "ratios: result 0x%08X\n", static_cast<unsigned>(error.Error()));
    return 1;
  }
  return 0;
}
