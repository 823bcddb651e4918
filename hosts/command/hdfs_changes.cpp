#include "hosts/command/hdfs_changes.h"

#include <nlohmann/json.hpp>

#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

bool LatestAnswerIsTrue() {
  const std::vector<HdfsExchange>& exchanges = HdfsExchangeLog::OfThread().Exchanges();
  if (exchanges.empty()) return false;
  const auto json = nlohmann::json::parse(exchanges.back().answer, nullptr, false);
  if (!json.is_object()) return false;
  const auto found = json.find("boolean");
  return found != json.end() && found->is_boolean() && found->get<bool>();
}

std::optional<HdfsFailure> Change(HdfsCaller& caller, HdfsCall call, bool& done,
                                  const std::function<HRESULT(IHdfsClient&)>& step) {
  call.repeatable = false;
  std::optional<HdfsFailure> failure = caller.Run(call, step);
  done = !failure && LatestAnswerIsTrue();
  return failure;
}

}  // namespace

std::optional<HdfsFailure> DeletePath(HdfsCaller& caller, const std::string& path, bool recursive,
                                      bool& done) {
  return Change(caller, {"DELETE", path}, done, [recursive](IHdfsClient& client) {
    VARIANT_BOOL success = VARIANT_FALSE;
    return client.Delete(recursive ? VARIANT_TRUE : VARIANT_FALSE, &success);
  });
}

std::optional<HdfsFailure> RenamePath(HdfsCaller& caller, const std::string& path,
                                      const std::string& destination, bool& done) {
  return Change(caller, {"RENAME", path}, done, [&destination](IHdfsClient& client) {
    VARIANT_BOOL success = VARIANT_FALSE;
    return client.Rename(Bstr(WideFromUtf8(destination)).Get(), &success);
  });
}

std::optional<HdfsFailure> CreateFolder(HdfsCaller& caller, const std::string& path,
                                        const std::string& permission, bool& done) {
  return Change(caller, {"MKDIRS", path}, done, [&permission](IHdfsClient& client) {
    VARIANT_BOOL success = VARIANT_FALSE;
    return client.CreateFolder(Bstr(WideFromUtf8(permission)).Get(), &success);
  });
}

}  // namespace velandoc
