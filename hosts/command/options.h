// What the user typed, understood.
#pragma once

#include <string>
#include <vector>

#include "hosts/command/doc_options.h"
#include "hosts/command/hdfs_options.h"

namespace velandoc {

enum class Action { kProbe, kDoc, kHdfs, kRegister, kUnregister, kClasses };

struct Options {
  Action action = Action::kProbe;
  std::vector<std::string> urls;  // of probe, as typed
  DocOptions doc;                 // of doc
  HdfsOptions hdfs;               // of hdfs
  bool user = false;              // register and unregister: for this user alone
  bool json = false;
  bool noInput = false;
};

/// What to do; or, with `proceed` false, the exit code to leave with: kExitSuccess after --help and
/// --version, whose text is then written to the output; kExitUsage after a mistake, which is then
/// told on the error stream.
struct ParsedOptions {
  bool proceed = false;
  int exitCode = 0;
  Options options;
};
ParsedOptions ParseOptions(std::vector<std::string> arguments);

}  // namespace velandoc
