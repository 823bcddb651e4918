#include "standin/hdfs_params.h"

#include <algorithm>

#include "standin/hdfs_error.h"
#include "standin/hdfs_owners.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

[[noreturn]] void Refuse(std::string_view name, const std::string& why) {
  throw HdfsError(HdfsFault::kIllegalArgument,
                  "Invalid value for webhdfs parameter \"" + std::string(name) + "\": " + why);
}

// Nothing where the parameter is left out or empty, which is the same to Hadoop.
std::optional<std::string> Value(const HdfsCall& call, std::string_view name) {
  const HdfsParam* param = call.Find(name);
  if (!param) return std::nullopt;
  if (!param->value)
    throw BadHdfsAddress("A parameter has a malformed escape or is no UTF-8: " + param->name);
  if (param->value->empty()) return std::nullopt;
  return param->value;
}

bool IsUserName(std::string_view name) {
  if (name.ends_with('$')) name.remove_suffix(1);
  const auto isLetter = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
  };
  return !name.empty() && isLetter(name.front()) &&
         std::all_of(name.begin(), name.end(), [&isLetter](char c) {
           return isLetter(c) || (c >= '0' && c <= '9') || c == '.' || c == '-';
         });
}

}  // namespace

bool HdfsBool(const HdfsCall& call, std::string_view name, bool otherwise) {
  const auto value = Value(call, name);
  if (!value) return otherwise;
  if (EqualNoCase(*value, "true")) return true;
  if (!EqualNoCase(*value, "false")) Refuse(name, "Failed to parse \"" + *value + "\" to Boolean.");
  return false;
}

std::optional<std::uint64_t> HdfsNumber(const HdfsCall& call, std::string_view name) {
  const auto value = Value(call, name);
  if (!value || *value == "null") return std::nullopt;
  const auto number = ParseNumber<std::int64_t>(*value);
  if (!number) Refuse(name, "Failed to parse \"" + *value + "\" as a radix-10 long integer.");
  if (*number < 0)
    Refuse(name, "Invalid parameter range: " + std::string(name) + " = " + *value + " < 0");
  return static_cast<std::uint64_t>(*number);
}

unsigned HdfsPermission(const HdfsCall& call, unsigned otherwise) {
  constexpr std::string_view kName = "permission";
  const auto value = Value(call, kName);
  if (!value || *value == "null") return otherwise;
  const auto number = ParseNumber<std::uint16_t>(*value, 8);
  if (!number) Refuse(kName, "Failed to parse \"" + *value + "\" as a radix-8 short integer.");
  if (*number > 01777) Refuse(kName, "Invalid parameter range: permission = " + *value + " > 1777");
  return *number;
}

std::string HdfsDestination(const HdfsCall& call) {
  constexpr std::string_view kName = "destination";
  const auto value = Value(call, kName);
  if (!value)
    throw HdfsError(HdfsFault::kIllegalArgument,
                    "Required param destination for op: RENAME is null or empty");
  if (!value->starts_with('/'))
    Refuse(kName,
           "Invalid parameter value: destination = \"" + *value + "\" is not an absolute path.");
  return *value;
}

std::string HdfsCaller(const HdfsCall& call, const Request& request) {
  constexpr std::string_view kName = "user.name";
  if (!request.user.empty()) return request.user.substr(request.user.find('\\') + 1);
  const auto value = Value(call, kName);
  if (!value) return std::string(kHdfsNobody);
  if (!IsUserName(*value))
    Refuse(kName, "Invalid parameter value: user.name = \"" + *value +
                      "\" does not belong to the domain ^[A-Za-z_][A-Za-z0-9._-]*[$]?$");
  return *value;
}

}  // namespace velandoc::standin
