// The stand-in server: plays the servers that velandoc talks to, misbehaves on command and records
// every request. For tests, the demo and benchmarks; it listens on 127.0.0.1 only.
#include <libxml/parser.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>

#include "standin/command_line.h"
#include "standin/control_pages.h"
#include "standin/hdfs_service.h"
#include "standin/lists_service.h"
#include "standin/measuring_pages.h"
#include "standin/rpc_service.h"
#include "standin/sample_site.h"
#include "standin/server.h"
#include "standin/site_json.h"
#include "standin/user_group_service.h"
#include "standin/webs_service.h"

namespace velandoc::standin {
namespace {

// Written beside and renamed, so that who waits for the file never reads half of it.
void WriteReadyFile(const std::string& path, const Server& server) {
  const std::string temporary = path + ".new";
  std::ofstream file(temporary, std::ios::trunc);
  file << "{\"http\":" << server.PortNumber(Port::kHttp)
       << ",\"https\":" << server.PortNumber(Port::kHttps)
       << ",\"control\":" << server.PortNumber(Port::kControl) << ",\"pid\":" << getpid() << "}\n";
  file.close();
  if (!file || std::rename(temporary.c_str(), path.c_str()) != 0)
    throw std::runtime_error(path + ": cannot be written");
}

// Blocked in all threads, so that only the main one takes them.
sigset_t BlockEndingSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, number);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  return signals;
}

void WaitForEnd(const sigset_t& signals, std::chrono::seconds longest) {
  const timespec time{longest.count(), 0};
  while (sigtimedwait(&signals, nullptr, &time) < 0 && errno == EINTR) {
  }
}

// The sample where no file is named.
Site LoadSite(const std::string& path) {
  if (path.empty()) return ParseSite(kSampleSite);
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  if (!file || !text) throw std::runtime_error(path + ": cannot be read");
  try {
    return ParseSite(text.str());
  } catch (const std::exception& error) {
    throw std::runtime_error(path + ": " + error.what());
  }
}

// A fresh folder that goes with its object.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::filesystem::path& parent)
      : m_path((parent / "hdfs-XXXXXX").string()) {
    if (!mkdtemp(m_path.data())) throw std::runtime_error(m_path + ": cannot be made");
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }

  const std::string& Path() const { return m_path; }

 private:
  std::string m_path;
};

// Beside the log, or beside the ready file where the log is a device.
std::filesystem::path FolderForFiles(const CommandLine& line) {
  const bool isFile = std::filesystem::is_regular_file(line.log);
  return std::filesystem::absolute(isFile ? line.log : line.ready).parent_path();
}

void Run(const CommandLine& line) {
  const sigset_t signals = BlockEndingSignals();
  xmlInitParser();

  RequestLog log(line.log);
  std::optional<TemporaryFolder> files;
  if (line.hdfs.empty()) files.emplace(FolderForFiles(line));
  HdfsStore hdfs(files ? files->Path() : line.hdfs, files.has_value());
  SiteStore sites(LoadSite(line.site));

  ApplicationList applications;
  // Before the others, which look for the ends of paths.
  applications.Add(std::make_unique<HdfsService>(hdfs));
  applications.Add(std::make_unique<ListsService>(sites));
  applications.Add(std::make_unique<WebsService>(sites));
  applications.Add(std::make_unique<UserGroupService>(sites));
  applications.Add(std::make_unique<RpcService>(sites));
  applications.Add(std::make_unique<MeasuringPages>());

  Certificates certificates(line.certificates);
  TlsAcceptor tls(certificates);
  RuleBook rules;
  Statistics statistics;
  StopSignal stop;
  ApplicationList controlPages;
  Services services{applications, controlPages, certificates, tls,        log,
                    rules,        sites,        hdfs,         statistics, stop};
  controlPages.Add(std::make_unique<ControlPages>(services));

  Server server(services);
  server.Start();
  WriteReadyFile(line.ready, server);
  WaitForEnd(signals, line.longestRun);
  server.Stop();
}

}  // namespace
}  // namespace velandoc::standin

int main(int count, char** arguments) {
  try {
    velandoc::standin::Run(velandoc::standin::ParseCommandLine(count, arguments));
    return 0;
  } catch (const std::invalid_argument& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "velandoc-standin: %s\n", error.what());
    return 1;
  }
}
