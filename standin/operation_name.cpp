#include "standin/operation_name.h"

#include <string_view>

#include "standin/hdfs_call.h"
#include "standin/rpc_form.h"

namespace velandoc::standin {

bool IsRpcRequest(const Request& request) {
  const std::string* type = request.Find("Content-Type");
  return type && *type == "application/x-vermeer-urlencoded";
}

std::string OperationName(const Request& request) {
  if (const std::string* action = request.Find("SOAPAction")) {
    std::string_view name = *action;
    if (name.ends_with('"')) name.remove_suffix(1);
    return std::string(name.substr(name.rfind('/') + 1));
  }
  if (const auto call = ParseHdfsCall(request)) return call->op;
  constexpr std::string_view kMethod = "method=";
  if (!IsRpcRequest(request) || !request.body.starts_with(kMethod)) return {};
  std::string problem;
  const auto form =
      ParseRpcForm(std::string_view(request.body).substr(0, request.body.find('&')), problem);
  if (!form) return {};
  const std::string& method = form->front().value;
  return method.substr(0, method.find(':'));
}

std::string RoleName(const Request& request) {
  const auto call = ParseHdfsCall(request);
  if (!call) return {};
  return call->isForData ? "data node" : "name node";
}

}  // namespace velandoc::standin
