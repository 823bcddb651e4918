// What went wrong in an operation of HDFS, in words, as an exit code and as JSON.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "hosts/command/exit_codes.h"
#include "hosts/command/hdfs_exchange.h"
#include "hosts/command/remote_exception.h"

namespace velandoc {

struct HdfsFailure {
  std::string operation;  // "OPEN", or a step of the command's own
  std::string path;       // in HDFS, or the local one
  std::string node;       // "name node" or "data node"; empty if nobody was spoken to
  std::string host;       // with its port
  int status = 0;         // of HTTP, 0 without an answer
  DWORD error = 0;        // the platform's
  std::optional<RemoteException> exception;
  std::string what;  // the end of the sentence
  int exitCode = kExitFailure;

  bool IsStandby() const { return exception && exception->exception == "StandbyException"; }
  bool IsMissing() const;
};

/// "OPEN of '/a' at data node dn1:9864 failed: 403 AccessControlException: ..."
std::string FailureText(const HdfsFailure& failure);
nlohmann::ordered_json FailureJson(const HdfsFailure& failure);

/// Tells of the exchange that ended an operation; `wanted` is the status that it should have had.
HdfsFailure ExplainExchange(std::string operation, std::string path, const HdfsExchange& exchange,
                            int wanted);

/// A failure on this side of the wire.
HdfsFailure LocalFailure(std::string operation, std::string path, std::string what, int exitCode);

}  // namespace velandoc
