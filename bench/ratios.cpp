// Whole operations of the component beside curl, in one run and against one server, as ratios of
// rates: above 1 the component is the faster. Rounds alternate between the two sides, and the
// median round counts.
//
//   ratios HTTP-PORT [check|download|upload]
//
// HTTP-PORT is the stand-in server's; it also serves as the forward proxy by which
// http://docs.example.test/ is reached.

#include <curl/curl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

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

constexpr char kEnvelope[] =
    "<soap:Envelope xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/\"><soap:Body>"
    "<GetListCollection xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\"/>"
    "</soap:Body></soap:Envelope>";

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

size_t Keep(char* data, size_t size, size_t count, void* target) {
  static_cast<std::string*>(target)->append(data, size * count);
  return size * count;
}

void PostMany(CURLSH* cache, int count) {
  curl_slist* headers = nullptr;
  for (const char* line :
       {"Content-Type: text/xml; charset=utf-8",
        "SOAPAction: http://schemas.microsoft.com/sharepoint/soap/GetListCollection",
        "Accept: text/*"}) {
    headers = curl_slist_append(headers, line);
  }
  for (int i = 0; i < count; ++i) {
    CURL* easy = curl_easy_init();
    std::string answer;
    curl_easy_setopt(easy, CURLOPT_SHARE, cache);
    curl_easy_setopt(easy, CURLOPT_URL, "http://docs.example.test/_vti_bin/lists.asmx");
    curl_easy_setopt(easy, CURLOPT_USERAGENT, "CWinInetConnection");
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, kEnvelope);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, Keep);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &answer);
    const CURLcode code = curl_easy_perform(easy);
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    curl_easy_cleanup(easy);
    Require(code == CURLE_OK && status == 200, "curl's post failed");
  }
  curl_slist_free_all(headers);
}

void Check(int port) {
  const std::string proxy = "http://127.0.0.1:" + std::to_string(port);
  setenv("http_proxy", proxy.c_str(), 1);
  CURLSH* cache = curl_share_init();
  curl_share_setopt(cache, CURLSHOPT_SHARE, CURL_LOCK_DATA_CONNECT);
  Compare(
      "`ServerCheck.Check`, beside a bare libcurl post", kChecksPerRound, "calls/s",
      [] { CheckMany(kChecksPerRound); }, [&] { PostMany(cache, kChecksPerRound); });
  curl_share_cleanup(cache);

  const int before = SocketsInTimeWait();
  CheckMany(kSocketCalls);
  std::printf("| sockets in TIME_WAIT after %d calls of `Check` | %+d | | |\n", kSocketCalls,
              SocketsInTimeWait() - before);
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

void Exchange(int port, LPCWSTR verb, const std::u16string& object,
              const std::function<void(WinInet&, HINTERNET)>& work) {
  WinInet& inet = CurrentPort<WinInet>();
  Handle session(inet.InternetOpenW(u"ratios", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
  Handle connect(inet.InternetConnectW(session.Get(), u"127.0.0.1", static_cast<WORD>(port),
                                       nullptr, nullptr, INTERNET_SERVICE_HTTP, 0, 0));
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

void Download(int port) {
  const std::string url =
      "http://127.0.0.1:" + std::to_string(port) + "/bytes/" + std::to_string(kBodySize);
  const std::string size = std::to_string(kBodySize);
  const std::u16string object = u"/bytes/" + std::u16string(size.begin(), size.end());
  Compare(
      "1 GiB body read in steps of 8192 bytes, beside `curl -o /dev/null`", kBodySize / 1e6, "MB/s",
      [&] {
        Exchange(port, u"GET", object, [](WinInet& inet, HINTERNET request) {
          Require(inet.HttpSendRequestW(request, nullptr, 0, nullptr, 0), "the send failed");
          ReadToEnd(inet, request, kBodySize);
        });
      },
      [&] {
        RunCurl({"-o", "/dev/null", url});
      });
}

void Upload(int port) {
  char path[] = "/tmp/velandoc-upload-XXXXXX";
  const int file = mkstemp(path);
  Require(file >= 0 && ftruncate(file, kBodySize) == 0, "no temporary file");
  close(file);
  const std::string url = "http://127.0.0.1:" + std::to_string(port) + "/sink";
  try {
    Compare(
        "1 GiB body written in steps of 8192 bytes, beside `curl -T`", kBodySize / 1e6, "MB/s",
        [&] {
          Exchange(port, u"PUT", u"/sink", [](WinInet& inet, HINTERNET request) {
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
              Require(inet.InternetWriteFile(request, piece.data(), kStep, &written) &&
                          written == kStep,
                      "the write failed");
            }
            Require(inet.HttpEndRequestW(request, nullptr, 0, 0), "the end failed");
            ReadToEnd(inet, request, 0);
          });
        },
        [&] {
          RunCurl({"-T", path, "-H", "Expect:", url});
        });
  } catch (...) {
    unlink(path);
    throw;
  }
  unlink(path);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: ratios HTTP-PORT [check|download|upload]\n");
    return 2;
  }
  const int port = std::atoi(argv[1]);
  const std::string which = argc > 2 ? argv[2] : "";
  curl_global_init(CURL_GLOBAL_DEFAULT);
  try {
    std::printf("| operation | component | curl | ratio |\n| --- | --- | --- | --- |\n");
    // The bodies first: the probe sets the proxy for the rest of the process.
    if (which.empty() || which == "download") Download(port);
    if (which.empty() || which == "upload") Upload(port);
    if (which.empty() || which == "check") Check(port);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "ratios: %s\n", error.what());
    return 1;
  } catch (const _com_error& error) {
    std::fprintf(stderr, "ratios: result 0x%08X\n", static_cast<unsigned>(error.Error()));
    return 1;
  }
  return 0;
}
