#include "standin/hdfs_settings.h"

#include "standin/json_fields.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

using nlohmann::json;

void ReadStandby(const json& value, HdfsSettings& settings) {
  constexpr std::size_t kMostHosts = 100;
  if (!value.is_array()) {
    settings.isStandby = value.get<bool>();
    return;
  }
  if (value.size() > kMostHosts) throw std::invalid_argument("100 name nodes are the most");
  for (const json& host : value) settings.standbyHosts.insert(LowerAscii(host.get<std::string>()));
}

// It goes into a header as it is.
std::string AddressText(std::string text, const char* key) {
  for (const char c : text)
    if (c <= ' ' || c > '~') throw std::invalid_argument(std::string(key) + " has plain letters");
  return text;
}

void ReadDataNode(const json& value, HdfsSettings& settings) {
  CheckKeys(value, "data_node", {"host", "port"});
  settings.dataHost = Optional<std::string>(value, "host");
  if (settings.dataHost) settings.dataHost = AddressText(*settings.dataHost, "host");
  const auto port = Optional<std::uint64_t>(value, "port");
  if (port && (*port == 0 || *port > 65535)) throw std::invalid_argument("port is 1 to 65535");
  if (port) settings.dataPort = static_cast<std::uint16_t>(*port);
}

template <typename Value>
json OrNull(const std::optional<Value>& value) {
  return value ? json(*value) : json();
}

}  // namespace

HdfsSettings ParseHdfsSettings(std::string_view text) {
  const json value = json::parse(text);
  CheckKeys(value, "hdfs",
            {"standby", "safe_mode", "chunked", "location", "data_node", "opaque", "delegation",
             "http_fs", "continue100"});
  HdfsSettings settings;
  if (value.contains("standby")) ReadStandby(value["standby"], settings);
  settings.isSafe = value.value("safe_mode", false);
  settings.isChunked = value.value("chunked", false);
  settings.hasLocation = value.value("location", true);
  if (value.contains("data_node")) ReadDataNode(value["data_node"], settings);
  settings.isOpaque = value.value("opaque", false);
  settings.delegation = AddressText(value.value("delegation", ""), "delegation");
  settings.isHttpFs = value.value("http_fs", false);
  settings.greetsUnasked = value.value("continue100", false);
  return settings;
}

std::string FormatHdfsSettings(const HdfsSettings& settings) {
  json standby = settings.isStandby;
  if (!settings.standbyHosts.empty()) standby = settings.standbyHosts;
  return json{{"standby", standby},
              {"safe_mode", settings.isSafe},
              {"chunked", settings.isChunked},
              {"location", settings.hasLocation},
              {"data_node",
               {{"host", OrNull(settings.dataHost)}, {"port", OrNull(settings.dataPort)}}},
              {"opaque", settings.isOpaque},
              {"delegation", settings.delegation},
              {"http_fs", settings.isHttpFs},
              {"continue100", settings.greetsUnasked}}
             .dump() +
         "\n";
}

}  // namespace velandoc::standin
