// What the user typed behind `velandoc hdfs`, understood.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/command/name_nodes.h"

namespace velandoc {

enum class HdfsAction {
  kGet,
  kCat,
  kHead,
  kPut,
  kRemove,
  kMove,
  kMakeFolder,
  kList,
  kStat,
  kVerify
};

/// Which of the component's two clients is used.
enum class HdfsStack { kWinInet, kWinHttp };

struct HdfsOptions {
  HdfsAction action = HdfsAction::kGet;

  // Of all.
  std::string baseUrl;  // as typed
  std::vector<NameNode> nodes;
  std::string user;
  std::string stackWord = "wininet";  // as typed
  HdfsStack stack = HdfsStack::kWinInet;
  bool checksCertificates = true;
  bool quiet = false;
  std::vector<std::string> resolve;  // NAME=ADDRESS[:PORT], as typed

  // Of some.
  std::string remote;       // clean: it begins with a "/", has no empty names and no "/" at its end
  bool intoFolder = false;  // put: a "/" stood at its end
  std::string local;        // get: empty for the remote name
  std::string destination;  // mv: clean as `remote`
  bool recursive = false;
  bool all = false;  // -r: also what has the right size already
  bool longForm = false;
  bool noOverwrite = false;
  std::string permission;
  int lines = 10;
  unsigned jobs = 1;
};

/// Takes apart and checks what the parser cannot. The mistake, as one line without a full stop;
/// nothing if there is none.
std::optional<std::string> FinishHdfsOptions(HdfsOptions& options);

}  // namespace velandoc
