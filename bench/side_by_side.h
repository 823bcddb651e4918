// Two ways of doing one thing, measured in turns: what the programs of ratios have in common.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace velandoc::bench {

/// Throws std::runtime_error.
void Require(bool condition, const char* what);

/// What the programs are called with: SERVER HTTP-PORT HTTPS-PORT [ROW]... Without a ROW all are
/// asked for. Throws std::runtime_error if there are too few.
struct Arguments {
  Arguments(int argc, char** argv);
  bool Asks(const char* row) const;

  std::string server;
  std::string httpPort;
  std::string httpsPort;
  std::vector<std::string> rows;
};

/// What a row compares, and with which server both sides talk.
struct Row {
  std::string name;
  std::string server;
  double units;  // of one run
  const char* unit;
};

void PrintHeading();
/// Prints a row of the table: rates and the median ratio of `rounds` rounds, above 1 if ours is the
/// faster. Each round gives one ratio: what a change of the machine's speed does to one side it
/// does to the other. Both sides run once before anything is measured; `prepare` runs in front of
/// each run and is not measured.
void Compare(
    const Row& row, const std::function<void()>& ours, const std::function<void()>& theirs,
    const std::function<void()>& prepare = [] {}, int rounds = 7);
/// Prints a row with nothing beside it.
void PrintAlone(const std::string& name, const std::string& server, const std::string& value);

/// Runs a program with its standard output thrown away; throws std::runtime_error unless it ends
/// with 0.
void RunProgram(std::vector<std::string> arguments);
/// The curl command, without the user's settings and without a proxy.
void RunCurl(std::vector<std::string> arguments);

/// A folder for what is transferred, deleted in the end. Made in VELANDOC_BENCH_FOLDER, or where
/// that is not set in the system's folder for temporary files.
class Folder {
 public:
  Folder();
  ~Folder() { std::filesystem::remove_all(m_path); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::string File(const char* name) const { return (m_path / name).string(); }

 private:
  std::filesystem::path m_path;
};

/// The median seconds of `rounds` runs, behind one that does not count.
double MedianSeconds(const std::function<void()>& work, int rounds);

}  // namespace velandoc::bench
