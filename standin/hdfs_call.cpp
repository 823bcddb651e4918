#include "standin/hdfs_call.h"

#include <algorithm>
#include <utility>

#include "standin/base64.h"
#include "standin/sha256.h"
#include "standin/text.h"
#include "standin/utf8.h"

namespace velandoc::standin {
namespace {

constexpr std::string_view kPrefix = "/webhdfs/v1";

bool IsHdfsPath(std::string_view path) {
  return path.starts_with(kPrefix) &&
         (path.size() == kPrefix.size() || path[kPrefix.size()] == '/');
}

bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

std::optional<std::string> Unescape(std::string_view text) {
  for (std::size_t i = text.find('%'); i != std::string_view::npos; i = text.find('%', i + 1))
    if (i + 2 >= text.size() || !IsHexDigit(text[i + 1]) || !IsHexDigit(text[i + 2]))
      return std::nullopt;
  std::string bytes = UnescapeUrl(text);
  if (!IsUtf8(bytes)) return std::nullopt;
  return bytes;
}

// In a query "+" is a blank, in a path it is a plus.
std::optional<std::string> DecodeQueryText(std::string_view text) {
  std::string plain(text);
  std::replace(plain.begin(), plain.end(), '+', ' ');
  return Unescape(plain);
}

void ReadParams(std::string_view query, HdfsCall& call) {
  while (!query.empty()) {
    const std::string_view raw = query.substr(0, query.find('&'));
    query.remove_prefix(std::min(raw.size() + 1, query.size()));
    if (raw.empty()) continue;
    const std::size_t equals = raw.find('=');
    HdfsParam param;
    param.name = LowerAscii(raw.substr(0, equals));
    param.raw = raw;
    param.value = DecodeQueryText(equals == std::string_view::npos ? std::string_view()
                                                                   : raw.substr(equals + 1));
    if (param.name == "op") {
      call.op = UpperAscii(param.value.value_or(""));
    } else {
      call.params.push_back(std::move(param));
    }
  }
}

}  // namespace

const HdfsParam* HdfsCall::Find(std::string_view name) const {
  const auto found = std::find_if(params.begin(), params.end(),
                                  [name](const HdfsParam& param) { return param.name == name; });
  return found == params.end() ? nullptr : &*found;
}

std::optional<HdfsCall> ParseHdfsCall(const Request& request) {
  if (!IsHdfsPath(request.path)) return std::nullopt;
  HdfsCall call;
  if (request.pathAndQuery.size() > request.path.size())
    ReadParams(std::string_view(request.pathAndQuery).substr(request.path.size() + 1), call);
  // The whole query as a gateway hides it, see HdfsSettings::isOpaque.
  constexpr std::string_view kName = "_=";
  if (const HdfsParam* hidden = call.Find("_"); hidden && hidden->raw.starts_with(kName)) {
    const auto query = DecodeBase64(std::string_view(hidden->raw).substr(kName.size()));
    if (query && query->starts_with("op=")) ReadParams(*query, call);
  }
  call.isForData = call.Find("namenoderpcaddress") || call.Find("data");
  return call;
}

std::string DecodeHdfsPath(const Request& request) {
  const auto path = Unescape(std::string_view(request.path).substr(kPrefix.size()));
  if (!path) throw BadHdfsAddress("The path has a malformed escape or is no UTF-8.");
  return path->empty() ? "/" : *path;
}

std::string EncodeHdfsPath(std::string_view path) {
  constexpr std::string_view kPlain = "-._~!$&'()*+,;=:@/";
  std::string result;
  for (const char c : path) {
    const bool isAlphanumeric =
        (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    if (isAlphanumeric || kPlain.find(c) != std::string_view::npos) {
      result += c;
    } else {
      result += '%';
      result += UpperAscii(Hex({&c, 1}));
    }
  }
  return result;
}

}  // namespace velandoc::standin
