#include "hosts/command/hdfs_failure.h"

#include <nlohmann/json.hpp>

#include "hosts/command/server_word.h"
#include "hosts/command/step_failure.h"
#include "hosts/command/visible_text.h"

namespace velandoc {
namespace {

constexpr int kStatusRedirect = 307;
constexpr int kStatusUnauthorized = 401;
constexpr int kStatusNotFound = 404;
constexpr int kStatusProxyAuthentication = 407;

/// Of a message that goes on with a stack or with advice the first line is the one for people.
std::string FirstLine(std::string_view text) {
  return VisibleText(text.substr(0, text.find_first_of("\r\n")));
}

std::string StatusText(const HdfsFailure& failure, const HdfsExchange& exchange, int wanted) {
  std::string text = std::to_string(exchange.status);
  if (failure.exception) {
    const std::string name = FirstLine(failure.exception->exception);
    if (!name.empty()) text += " " + name;
    const std::string message = FirstLine(failure.exception->message);
    return message.empty() ? text : text + ": " + message;
  }
  if (exchange.status == kStatusRedirect) return text + ": it names no data node";
  if (exchange.status == kStatusUnauthorized) return text + ": it wants another login";
  if (exchange.status == kStatusProxyAuthentication) return text + ": the proxy wants a login";
  const std::string word = FindServerWord(exchange.answer);
  if (!word.empty()) return text + ": " + word;
  return text + " where " + std::to_string(wanted) + " was expected";
}

int ExitCodeOf(const HdfsFailure& failure) {
  if (failure.IsStandby()) return kExitNoNode;
  if (failure.IsMissing()) return kExitNotOpened;
  const bool exists =
      failure.exception && failure.exception->exception == "FileAlreadyExistsException";
  return exists ? kExitExists : kExitNo;
}

}  // namespace

bool HdfsFailure::IsMissing() const {
  return status == kStatusNotFound ||
         (exception && exception->exception == "FileNotFoundException");
}

std::string FailureText(const HdfsFailure& failure) {
  std::string text = failure.operation + " of '" + VisibleText(failure.path) + "'";
  if (!failure.node.empty()) text += " at " + failure.node + " " + VisibleText(failure.host);
  return text + " failed: " + failure.what;
}

nlohmann::ordered_json FailureJson(const HdfsFailure& failure) {
  nlohmann::ordered_json json = {{"operation", failure.operation},
                                 {"path", failure.path},
                                 {"node", nullptr},
                                 {"host", nullptr},
                                 {"httpCode", nullptr},
                                 {"networkError", nullptr},
                                 {"exception", nullptr},
                                 {"javaClassName", nullptr},
                                 {"message", nullptr},
                                 {"text", FailureText(failure)},
                                 {"exitCode", failure.exitCode}};
  if (!failure.node.empty()) {
    json["node"] = failure.node;
    json["host"] = failure.host;
  }
  if (failure.status != 0) json["httpCode"] = failure.status;
  if (failure.error != 0) json["networkError"] = failure.error;
  if (failure.exception) {
    json["exception"] = failure.exception->exception;
    json["javaClassName"] = failure.exception->javaClassName;
    json["message"] = failure.exception->message;
  }
  return json;
}

HdfsFailure ExplainExchange(std::string operation, std::string path, const HdfsExchange& exchange,
                            int wanted) {
  HdfsFailure failure;
  failure.operation = std::move(operation);
  failure.path = std::move(path);
  failure.node = exchange.isDataNode ? "data node" : "name node";
  failure.host = exchange.host + ":" + std::to_string(exchange.port);
  failure.status = exchange.status;
  failure.error = exchange.error;
  if (exchange.status == 0) {
    failure.what = NetworkErrorText(exchange.error);
    failure.exitCode = kExitNoNode;
  } else if (exchange.status != wanted) {
    failure.exception = FindRemoteException(exchange.answer);
    failure.what = StatusText(failure, exchange, wanted);
    failure.exitCode = ExitCodeOf(failure);
  } else {
    failure.what = "the answer broke off: " + NetworkErrorText(exchange.error);
    failure.exitCode = kExitIncomplete;
  }
  return failure;
}

HdfsFailure LocalFailure(std::string operation, std::string path, std::string what, int exitCode) {
  HdfsFailure failure;
  failure.operation = std::move(operation);
  failure.path = std::move(path);
  failure.what = std::move(what);
  failure.exitCode = exitCode;
  return failure;
}

}  // namespace velandoc
