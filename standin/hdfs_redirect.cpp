#include "standin/hdfs_redirect.h"

#include <string_view>

#include "standin/base64.h"
#include "standin/hdfs_json.h"
#include "standin/hdfs_params.h"

namespace velandoc::standin {
namespace {

// Host and port as the client asked for them.
std::string Authority(const Request& request) {
  if (const std::size_t scheme = request.target.find("://");
      scheme != std::string::npos && request.target.front() != '/') {
    const std::string rest = request.target.substr(scheme + 3);
    const std::string authority = rest.substr(0, rest.find_first_of("/?"));
    return authority.substr(authority.rfind('@') + 1);
  }
  const std::string* host = request.Find("Host");
  if (!host || host->empty()) throw BadHdfsAddress("The request names no host.");
  return *host;
}

std::string DataAuthority(const Request& request, const HdfsSettings& settings) {
  const std::string asked = Authority(request);
  // The colon of the port stands behind the bracket of an address.
  const std::size_t colon = asked.find(':', asked.rfind(']') + 1);
  std::string port = colon == std::string::npos ? "" : asked.substr(colon);
  if (settings.dataPort) port = ':' + std::to_string(*settings.dataPort);
  return settings.dataHost.value_or(request.host) + port;
}

bool IsOfCaller(const HdfsParam& param) {
  return param.name == "user.name" || param.name == "doas" || param.name == "delegation";
}

// In the order of a name node: operation, caller, name node, the rest.
std::string DataQuery(const Request& request, const HdfsCall& call, const HdfsSettings& settings) {
  std::string query = "op=" + call.op;
  for (const HdfsParam& param : call.params)
    if (IsOfCaller(param)) query += '&' + param.raw;
  if (!settings.delegation.empty()) query += "&delegation=" + settings.delegation;
  if (settings.isHttpFs) {
    query += "&data=true";
  } else {
    query += "&namenoderpcaddress=" + request.host + ":8020";
  }
  // An empty value is what name nodes send here.
  if (call.op == "CREATE" && !settings.isHttpFs) query += "&createflag=";
  if (call.op == "CREATE" && !call.Find("createparent")) query += "&createparent=true";
  if (call.op == "OPEN" && !call.Find("offset")) query += "&offset=0";
  for (const HdfsParam& param : call.params)
    if (!IsOfCaller(param) && param.name != "noredirect" && param.name != "createflag")
      query += '&' + param.raw;
  return settings.isOpaque ? "_=" + EncodeBase64(query) : query;
}

}  // namespace

Response RedirectToDataNode(const Request& request, const HdfsCall& call,
                            const HdfsSettings& settings) {
  std::string location = request.tls ? "https://" : "http://";
  location += DataAuthority(request, settings) + "/webhdfs/v1";
  location += EncodeHdfsPath(DecodeHdfsPath(request));
  location += '?' + DataQuery(request, call, settings);
  if (HdfsBool(call, "noredirect", false)) return HdfsJson(200, {{"Location", location}});
  Response response = TextAnswer(307, "application/octet-stream", {});
  if (settings.hasLocation) response.headers.push_back({"Location", location});
  return response;
}

std::string HdfsUrl(const Request& request) {
  return "hdfs://" + request.host + ":8020" + EncodeHdfsPath(DecodeHdfsPath(request));
}

}  // namespace velandoc::standin
