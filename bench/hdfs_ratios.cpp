// The HDFS client and its command beside curl and libcurl, in one run and against one server, as
// ratios of rates: above 1 the component is the faster.
//
//   hdfs_ratios SERVER HTTP-PORT HTTPS-PORT [get|put|text|peer|whole]...
//
// SERVER is what the rows call the server that listens on the ports: the stand-in, whose HDFS makes
// up what is read and drops what is written, or for `get` and `put` the nginx of beside_nginx.py.
// For https the environment's CURL_CA_BUNDLE names the server's authority. VELANDOC_WEBHDFS_PEER is
// the path of webhdfs_peer.js where the npm client `webhdfs` is installed; NODE_PATH names where.

#include <curl/curl.h>

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

/// The server that is talked with, by one of its schemes.
struct Server {
  std::string name;
  const char* scheme;
  std::string port;

  std::string Base() const { return std::string(scheme) + "://localhost:" + port; }
  Row Transfer(const std::string& what, const std::string& beside = "") const {
    return {what + " over " + scheme + beside, name, kBodySize / 1e6, "MB/s"};
  }
};

struct Form {
  const char* name;
  const CLSID& clsid;
};

const Form kForms[] = {{"WinINet", CLSID_HdfsClient}, {"WinHTTP", CLSID_HdfsClientWinHttp}};

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

void Get(const Server& server) {
  const std::string base = server.Base();
  const Folder folder;
  const std::string local = folder.File("f");
  const auto prepare = [&] { std::filesystem::remove(local); };
  const auto requireWhole = [&] {
    Require(std::filesystem::file_size(local) == kBodySize, "what was got is not whole");
  };
  const auto curl = [&] {
    RunCurl({"-L", "-o", local, Url(base, kRead, "OPEN")});
    requireWhole();
  };
  Compare(
      server.Transfer("`velandoc hdfs get` of 1 GiB to a file", ", beside `curl -L -o`"),
      [&] {
        RunCommand({"get", kRead, local}, base);
        requireWhole();
      },
      curl, prepare);
  for (const Form& form : kForms) {
    const ComPtr<IHdfsClient> client = NewClient(form, base, kRead);
    Compare(
        server.Transfer(std::string("`Download` (") + form.name + ") of the same"),
        [&] {
          CheckResult(client->Download(VARIANT_FALSE, Wide(local).Get(), nullptr));
          requireWhole();
        },
        curl, prepare);
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
void Peer(const Server& server) {
  const char* const script = std::getenv("VELANDOC_WEBHDFS_PEER");
  if (script == nullptr) return;
  const std::string base = server.Base();
  constexpr int kRounds = 3;
  const Folder folder;
  const std::string local = folder.File("f");
  const auto peer = [&](const char* what, const char* remote) {
    RunProgram({"/usr/bin/env", "node", script, what, server.port, remote, local});
    Require(std::filesystem::file_size(local) == kBodySize, "the npm client's get is not whole");
  };
  Compare(
      server.Transfer("`velandoc hdfs get` of 1 GiB to a file",
                      ", beside the npm client `webhdfs`"),
      [&] {
        RunCommand({"get", kRead, local}, base);
      },
      [&] { peer("get", kRead); }, [&] { std::filesystem::remove(local); }, kRounds);
  MakeSource(local);
  Compare(
      server.Transfer("`velandoc hdfs put` of a file of 1 GiB",
                      ", beside the npm client `webhdfs`"),
      [&] {
        RunCommand({"put", local, kWritten}, base);
      },
      [&] { peer("put", kWritten); }, [] {}, kRounds);
}

void Put(const Server& server) {
  const std::string base = server.Base();
  const Folder folder;
  const std::string local = folder.File("f");
  MakeSource(local);
  const auto curl = [&] {
    RunCurl({"-L", "-T", local, "-H",
             "Expect:", Url(base, kWritten, "CREATE&overwrite=true&namenoderpcaddress=x")});
  };
  Compare(
      server.Transfer("`velandoc hdfs put` of a file of 1 GiB",
                      ", beside `curl -T` straight to the data node"),
      [&] {
        RunCommand({"put", local, kWritten}, base);
      },
      curl);
  for (const Form& form : kForms) {
    const ComPtr<IHdfsClient> client = NewClient(form, base, kWritten);
    Compare(
        server.Transfer(std::string("`Upload` (") + form.name + ") of the same"),
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

void Text(const Server& server) {
  const std::string base = server.Base();
  CURLSH* cache = curl_share_init();
  for (const curl_lock_data what : {CURL_LOCK_DATA_CONNECT, CURL_LOCK_DATA_SSL_SESSION}) {
    curl_share_setopt(cache, CURLSHOPT_SHARE, what);
  }
  for (const Form& form : kForms) {
    for (const char* op : {"GETFILESTATUS", "OPEN"}) {
      const ComPtr<IHdfsClient> client = NewClient(form, base, kText);
      CheckResult(client->put_Op(Wide(op).Get()));
      const std::string url = Url(base, kText, op);
      Compare(
          {std::string("`GetText` (") + form.name + ") of " + op + " over " + server.scheme +
               ", beside bare libcurl with a shared cache",
           server.name, kCallsPerRound, "calls/s"},
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

void Whole(const Server& server) {
  const auto row = [](const char* name, const std::string& with,
                      const std::function<void()>& work) {
    constexpr int kRuns = 31;
    char value[32];
    std::snprintf(value, sizeof value, "%.1f ms", MedianSeconds(work, kRuns) * 1e3);
    PrintAlone(name, with, value);
  };
  row("`velandoc --version`, the whole process", "", [] { RunProgram({Command(), "--version"}); });
  row("`curl --version`, for comparison", "", [] { RunCurl({"--version"}); });
  row("`velandoc hdfs head -n 1000` of 10 GB, the whole process", server.name, [&] {
    RunCommand({"head", "-n", "1000", "/.generated/lines/10000000000/f"}, server.Base());
  });
}

}  // namespace

int main(int argc, char** argv) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  try {
    const Arguments asked(argc, argv);
    const Server http{asked.server, "http", asked.httpPort};
    const Server https{asked.server, "https", asked.httpsPort};
    PrintHeading();
    if (asked.Asks("whole")) Whole(http);
    if (asked.Asks("get")) Get(http);
    if (asked.Asks("get")) Get(https);
    if (asked.Asks("put")) Put(http);
    if (asked.Asks("put")) Put(https);
    if (asked.Asks("peer")) Peer(http);
    if (asked.Asks("text")) Text(http);
    if (asked.Asks("text")) Text(https);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "hdfs_ratios: %s\n", error.what());
    return 1;
  } catch (const _com_error& error) {
    std::fprintf(stderr, "hdfs_ratios: result 0x%08X\n", static_cast<unsigned>(error.Error()));
    return 1;
  }
  return 0;
}
