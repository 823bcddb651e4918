// The HDFS client and its command beside curl and libcurl, in one run and against one server, as
// ratios of rates: above 1 the component is the faster.
//
//   hdfs_ratios HTTP-PORT HTTPS-PORT [get|put|text|peer|whole]
//
// The ports are the stand-in server's, whose HDFS makes up what is read and drops what is written.
// For https the environment's CURL_CA_BUNDLE names the server's authority. VELANDOC_WEBHDFS_PEER is
// the path of webhdfs_peer.js where the npm client `webhdfs` is installed; NODE_PATH names where.

#include <curl/curl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/side_by_side.h"
#include "platform/owners.h"
#include "velandoc_idl.h"

using namespace velandoc;
using namespace velandoc::bench;

namespace {

constexpr std::size_t kBodySize = std::size_t{1} << 30;
constexpr int kCallsPerRound = 1000;
constexpr char kRead[] = "/.generated/bytes/1073741824/f";
constexpr char kWritten[] = "/.sink/f";
constexpr char kText[] = "/.generated/lines/640/f";

struct Form {
  const char* name;
  const CLSID& clsid;
};

const Form kForms[] = {{"WinINet", CLSID_HdfsClient}, {"WinHTTP", CLSID_HdfsClientWinHttp}};

/// A folder for what is transferred, gone in the end.
class Folder {
 public:
  Folder() : m_path(std::filesystem::temp_directory_path() / "velandoc-bench-XXXXXX") {
    std::string pattern = m_path.string();
    Require(mkdtemp(pattern.data()) != nullptr, "no temporary folder");
    m_path = pattern;
  }
  ~Folder() { std::filesystem::remove_all(m_path); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::string File(const char* name) const { return (m_path / name).string(); }

 private:
  std::filesystem::path m_path;
};

Bstr Wide(const std::string& text) { return Bstr(WideString(text.begin(), text.end())); }

ComPtr<IHdfsClient> NewClient(const Form& form, const std::string& base, const char* path) {
  ComPtr<IHdfsClient> client;
  CheckResult(
      CoCreateInstance(form.clsid, nullptr, CLSCTX_ALL, IID_IHdfsClient, client.ReceiveVoid()));
  CheckResult(client->put_BaseUrl(Wide(base).Get()));
  CheckResult(client->put_HdfsPath(Wide(path).Get()));
  return client;
}

std::string Command() {
  return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "velandoc").string();
}

void RunCommand(std::vector<std::string> arguments, const std::string& base) {
  arguments.insert(arguments.begin(), {Command(), "hdfs"});
  arguments.insert(arguments.end(), {"--base-url", base, "--quiet"});
  RunProgram(std::move(arguments));
}

std::string Url(const std::string& base, const char* path, const char* query) {
  return base + "/webhdfs/v1" + path + "?op=" + query;
}

void Get(const std::string& base, const char* scheme) {
  const Folder folder;
  const std::string local = folder.File("f");
  const auto prepare = [&] { std::filesystem::remove(local); };
  const auto curl = [&] { RunCurl({"-L", "-o", local, Url(base, kRead, "OPEN")}); };
  Compare((std::string("`velandoc hdfs get` of 1 GiB to a file over ") + scheme +
           ", beside `curl -L -o`")
              .c_str(),
          kBodySize / 1e6, "MB/s",
          [&] {
            RunCommand({"get", kRead, local}, base);
          },
          curl, prepare);
  for (const Form& form : kForms) {
    const ComPtr<IHdfsClient> client = NewClient(form, base, kRead);
    Compare((std::string("`Download` (") + form.name + ") of the same over " + scheme).c_str(),
            kBodySize / 1e6, "MB/s",
            [&] { CheckResult(client->Download(VARIANT_FALSE, Wide(local).Get(), nullptr)); }, curl,
            prepare);
  }
}

void MakeSource(const std::string& local) {
  std::ofstream file(local, std::ios::binary);
  std::string piece(1 << 20, '\0');
  for (std::size_t i = 0; i < piece.size(); ++i) piece[i] = static_cast<char>(i * 7 % 253);
  for (std::size_t i = 0; i < kBodySize / piece.size(); ++i) file << piece;
  Require(static_cast<bool>(file.flush()), "no room for a temporary file");
}

/// The npm client, where it is installed.
void Peer(const std::string& base, const std::string& port) {
  const char* const script = std::getenv("VELANDOC_WEBHDFS_PEER");
  if (script == nullptr) return;
  constexpr int kRounds = 3;
  const Folder folder;
  const std::string local = folder.File("f");
  const auto peer = [&](const char* what, const char* remote) {
    RunProgram({"/usr/bin/env", "node", script, what, port, remote, local});
    Require(std::filesystem::file_size(local) == kBodySize, "the npm client's get is not whole");
  };
  Compare(
      "`velandoc hdfs get` of 1 GiB to a file over http, beside the npm client `webhdfs`",
      kBodySize / 1e6, "MB/s",
      [&] {
        RunCommand({"get", kRead, local}, base);
      },
      [&] { peer("get", kRead); }, [&] { std::filesystem::remove(local); }, kRounds);
  MakeSource(local);
  Compare(
      "`velandoc hdfs put` of a file of 1 GiB over http, beside the npm client `webhdfs`",
      kBodySize / 1e6, "MB/s",
      [&] {
        RunCommand({"put", local, kWritten}, base);
      },
      [&] { peer("put", kWritten); }, [] {}, kRounds);
}

void Put(const std::string& base, const char* scheme) {
  const Folder folder;
  const std::string local = folder.File("f");
  MakeSource(local);
  const auto curl = [&] {
    RunCurl({"-L", "-T", local, "-H",
             "Expect:", Url(base, kWritten, "CREATE&overwrite=true&namenoderpcaddress=x")});
  };
  Compare((std::string("`velandoc hdfs put` of a file of 1 GiB over ") + scheme +
           ", beside `curl -T` straight to the data node")
              .c_str(),
          kBodySize / 1e6, "MB/s",
          [&] {
            RunCommand({"put", local, kWritten}, base);
          },
          curl);
  for (const Form& form : kForms) {
    const ComPtr<IHdfsClient> client = NewClient(form, base, kWritten);
    Compare((std::string("`Upload` (") + form.name + ") of the same over " + scheme).c_str(),
            kBodySize / 1e6, "MB/s",
            [&] {
              const Variant source{Wide(local).View()};
              CheckResult(client->Upload(source.Get(), VARIANT_TRUE, nullptr));
            },
            curl);
  }
}

std::size_t Keep(char* data, std::size_t size, std::size_t count, void* target) {
  static_cast<std::string*>(target)->append(data, size * count);
  return size * count;
}

void AskMany(CURLSH* cache, const std::string& url) {
  for (int i = 0; i < kCallsPerRound; ++i) {
    CURL* easy = curl_easy_init();
    std::string answer;
    curl_easy_setopt(easy, CURLOPT_SHARE, cache);
    curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy, CURLOPT_NOPROXY, "*");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_CAINFO, std::getenv("CURL_CA_BUNDLE"));
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, Keep);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &answer);
    const CURLcode code = curl_easy_perform(easy);
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    curl_easy_cleanup(easy);
    Require(code == CURLE_OK && status == 200 && !answer.empty(), "libcurl's get failed");
  }
}

void Text(const std::string& base, const char* scheme) {
  CURLSH* cache = curl_share_init();
  for (const curl_lock_data what : {CURL_LOCK_DATA_CONNECT, CURL_LOCK_DATA_SSL_SESSION}) {
    curl_share_setopt(cache, CURLSHOPT_SHARE, what);
  }
  for (const Form& form : kForms) {
    for (const char* op : {"GETFILESTATUS", "OPEN"}) {
      const ComPtr<IHdfsClient> client = NewClient(form, base, kText);
      CheckResult(client->put_Op(Wide(op).Get()));
      const std::string url = Url(base, kText, op);
      Compare((std::string("`GetText` (") + form.name + ") of " + op + " over " + scheme +
               ", beside bare libcurl with a shared cache")
                  .c_str(),
              kCallsPerRound, "calls/s",
              [&] {
                for (int i = 0; i < kCallsPerRound; ++i) {
                  Bstr text;
                  CheckResult(client->GetText(text.Receive()));
                  Require(!text.View().empty(), "no text");
                }
              },
              [&] { AskMany(cache, url); });
    }
  }
  curl_share_cleanup(cache);
}

void Whole(const std::string& base) {
  constexpr int kRuns = 31;
  const auto row = [](const char* name, double seconds) {
    std::printf("| %s | %.1f ms | | |\n", name, seconds * 1e3);
  };
  row("`velandoc --version`, the whole process", MedianSeconds(
                                                     [] {
                                                       RunProgram({Command(), "--version"});
                                                     },
                                                     kRuns));
  row("`curl --version`, for comparison", MedianSeconds([] { RunCurl({"--version"}); }, kRuns));
  row("`velandoc hdfs head -n 1000` of 10 GB, the whole process",
      MedianSeconds(
          [&] {
            RunCommand({"head", "-n", "1000", "/.generated/lines/10000000000/f"}, base);
          },
          kRuns));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: hdfs_ratios HTTP-PORT HTTPS-PORT [get|put|text|peer|whole]\n");
    return 2;
  }
  const std::string http = std::string("http://localhost:") + argv[1];
  const std::string https = std::string("https://localhost:") + argv[2];
  const std::string which = argc > 3 ? argv[3] : "";
  const auto isAsked = [&](const char* name) { return which.empty() || which == name; };
  curl_global_init(CURL_GLOBAL_DEFAULT);
  try {
    std::printf("| operation | component | curl | ratio |\n| --- | --- | --- | --- |\n");
    if (isAsked("whole")) Whole(http);
    if (isAsked("get")) Get(http, "http");
    if (isAsked("get")) Get(https, "https");
    if (isAsked("put")) Put(http, "http");
    if (isAsked("put")) Put(https, "https");
    if (isAsked("peer")) Peer(http, argv[1]);
    if (isAsked("text")) Text(http, "http");
    if (isAsked("text")) Text(https, "https");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "hdfs_ratios: %s\n", error.what());
    return 1;
  } catch (const _com_error& error) {
    std::fprintf(stderr, "hdfs_ratios: result 0x%08X\n", static_cast<unsigned>(error.Error()));
    return 1;
  }
  return 0;
}
