#include "bench/side_by_side.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace velandoc::bench {
namespace {

double Seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

void Require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

Arguments::Arguments(int argc, char** argv) {
  Require(argc >= 4, "the arguments are SERVER HTTP-PORT HTTPS-PORT [ROW]...");
  server = argv[1];
  httpPort = argv[2];
  httpsPort = argv[3];
  rows.assign(argv + 4, argv + argc);
}

bool Arguments::Asks(const char* row) const {
  return rows.empty() || std::find(rows.begin(), rows.end(), row) != rows.end();
}

void PrintHeading() {
  std::printf(
      "| operation | server | component | curl | ratio |\n| --- | --- | --- | --- | --- |\n");
}

void PrintAlone(const std::string& name, const std::string& server, const std::string& value) {
  std::printf("| %s | %s | %s | | |\n", name.c_str(), server.c_str(), value.c_str());
  std::fflush(stdout);
}

void Compare(const Row& row, const std::function<void()>& ours, const std::function<void()>& theirs,
             const std::function<void()>& prepare, int rounds) {
  for (const auto* side : {&ours, &theirs}) {
    prepare();
    (*side)();
  }
  std::vector<double> our_rates;
  std::vector<double> their_rates;
  std::vector<double> ratios;
  for (int round = 0; round < rounds; ++round) {
    prepare();
    const double our_seconds = Seconds(ours);
    prepare();
    const double their_seconds = Seconds(theirs);
    our_rates.push_back(row.units / our_seconds);
    their_rates.push_back(row.units / their_seconds);
    ratios.push_back(their_seconds / our_seconds);
  }
  std::printf("| %s | %s | %.0f %s | %.0f %s | %.2f |\n", row.name.c_str(), row.server.c_str(),
              Median(our_rates), row.unit, Median(their_rates), row.unit, Median(ratios));
  std::fflush(stdout);
}

void RunProgram(std::vector<std::string> arguments) {
  std::fflush(stdout);  // else the child has the text too
  const pid_t child = fork();
  Require(child != -1, "no process for a program");
  if (child == 0) {
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    if (freopen("/dev/null", "w", stdout) == nullptr) _exit(126);
    execvp(pointers[0], pointers.data());
    _exit(127);
  }
  int status = 0;
  Require(waitpid(child, &status, 0) == child, "a program's end is not known");
  Require(WIFEXITED(status) && WEXITSTATUS(status) == 0, "a program failed");
}

void RunCurl(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"curl", "-q", "-sSf", "--noproxy", "*"});
  RunProgram(std::move(arguments));
}

Folder::Folder() {
  const char* const chosen = std::getenv("VELANDOC_BENCH_FOLDER");
  const std::filesystem::path parent = chosen != nullptr && *chosen != 0
                                           ? std::filesystem::path(chosen)
                                           : std::filesystem::temp_directory_path();
  std::string pattern = (parent / "velandoc-bench-XXXXXX").string();
  Require(mkdtemp(pattern.data()) != nullptr, "no temporary folder");
  m_path = pattern;
}

double MedianSeconds(const std::function<void()>& work, int rounds) {
  work();
  std::vector<double> seconds;
  for (int round = 0; round < rounds; ++round) seconds.push_back(Seconds(work));
  return Median(seconds);
}

}  // namespace velandoc::bench
