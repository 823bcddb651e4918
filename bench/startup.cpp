// How long it takes from nothing to an object: loading the runtime, the component and the system's
// libraries that they need.
//
//   startup FOLDER          prints the table's rows; FOLDER holds libvelandoc-com.so.1 and
//                           libvelandoc.so
//   startup FOLDER ROUND    one round, in a process of its own: `all` at once, or in `parts`
//
// The program itself is linked with neither: each round begins with what every C++ program has.
#include <dlfcn.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/com.h"
#include "resources/prog_ids.h"

namespace {

constexpr int kRounds = 31;

// What the two libraries are linked with; each brings its own.
constexpr const char* kSystemLibraries[] = {"libxml2.so.2", "libssl.so.3", "libcurl.so.4"};

void* Load(const std::string& library) {
  void* const loaded = dlopen(library.c_str(), RTLD_LAZY | RTLD_LOCAL);
  if (loaded == nullptr) throw std::runtime_error(dlerror());
  return loaded;
}

/// Milliseconds by the clock, and of the process's own work.
struct Times {
  double passed = 0;
  double worked = 0;
};
double Read(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}
Times Now() { return {Read(CLOCK_MONOTONIC), Read(CLOCK_PROCESS_CPUTIME_ID)}; }
Times Since(const Times& start) {
  const Times now = Now();
  return {now.passed - start.passed, now.worked - start.worked};
}
void Print(const Times& times) { std::printf("%.4f %.4f\n", times.passed, times.worked); }

void Create(const std::string& folder) {
  void* const runtime = Load(folder + "/libvelandoc-com.so.1");
  using Function = HRESULT (*)(REFCLSID, IUnknown*, DWORD, REFIID, void**);
  const auto create = reinterpret_cast<Function>(dlsym(runtime, "CoCreateInstance"));
  if (create == nullptr) throw std::runtime_error("the runtime makes no objects");
  void* object = nullptr;
  if (FAILED(create(velandoc::kClientClass, nullptr, CLSCTX_ALL, IID_IUnknown, &object))) {
    throw std::runtime_error("no object");
  }
}

void RunRound(const std::string& folder, const std::string& round) {
  if (round == "parts") {
    const Times start = Now();
    for (const char* const library : kSystemLibraries) Load(library);
    Print(Since(start));
  }
  const Times start = Now();
  Create(folder);
  Print(Since(start));
}

std::vector<Times> RunProcess(const std::string& program, const std::string& folder,
                              const std::string& round) {
  FILE* const output = popen(("'" + program + "' '" + folder + "' " + round).c_str(), "r");
  if (output == nullptr) throw std::runtime_error("no process");
  std::vector<Times> lines;
  Times times;
  while (std::fscanf(output, "%lf %lf", &times.passed, &times.worked) == 2) lines.push_back(times);
  if (pclose(output) != 0) throw std::runtime_error("a round failed");
  return lines;
}

void PrintRow(const char* what, const char* goal, const std::vector<Times>& rounds) {
  const auto median = [&rounds](double Times::*field) {
    std::vector<double> values;
    for (const Times& times : rounds) values.push_back(times.*field);
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
  };
  std::printf("| %s | %.2f ms | %.2f ms | %s |\n", what, median(&Times::passed),
              median(&Times::worked), goal);
}

void PrintTable(const std::string& program, const std::string& folder) {
  // A registered component would be another one.
  setenv("VELANDOC_REGISTRY_DIR", "/nonexistent", 1);
  std::vector<Times> all;
  std::vector<Times> systems;
  std::vector<Times> ours;
  for (int i = 0; i < kRounds; ++i) {
    all.push_back(RunProcess(program, folder, "all").at(0));
    const std::vector<Times> parts = RunProcess(program, folder, "parts");
    systems.push_back(parts.at(0));
    ours.push_back(parts.at(1));
  }
  std::printf("| start-up, medians of %d processes | time | processor time | goal |\n", kRounds);
  std::printf("| --- | --- | --- | --- |\n");
  PrintRow("from nothing to an object", "5 ms", all);
  PrintRow("of this the system's libraries (libcurl, OpenSSL, libxml2 and theirs)", "", systems);
  PrintRow("of this the runtime, the component and the object", "", ours);
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc == 3) {
    RunRound(argv[1], argv[2]);
  } else if (argc == 2) {
    PrintTable(argv[0], argv[1]);
  } else {
    return 2;
  }
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "startup: %s\n", error.what());
  return 1;
}
