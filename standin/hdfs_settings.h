// What kind of HDFS is played. Set by the control port; README.md tells the keys.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace velandoc::standin {

struct HdfsSettings {
  // Every name node is on standby, or those of these host names.
  bool isStandby = false;
  std::set<std::string> standbyHosts;
  bool isSafe = false;
  // Files come in chunks, without a length.
  bool isChunked = false;
  // Without one, redirects lead nowhere.
  bool hasLocation = true;
  // The data node's address in redirects; left out, the one that the client asked.
  std::optional<std::string> dataHost;
  std::optional<std::uint16_t> dataPort;
  // The whole query of a redirect hidden in one parameter, as gateways do.
  bool isOpaque = false;
  // The token, in the form in which it stands in an address, that redirects carry and the data node
  // wants back; empty for none.
  std::string delegation;
  // One server for both roles that serves files at once, is particular about uploads and writes its
  // JSON in another hand.
  bool isHttpFs = false;
  // The data node sends 100 Continue to those who did not ask.
  bool greetsUnasked = false;
};

// Keys left out have their defaults. Throws std::exception with a message that names the mistake.
HdfsSettings ParseHdfsSettings(std::string_view json);
// What ParseHdfsSettings reads, every key written.
std::string FormatHdfsSettings(const HdfsSettings& settings);

}  // namespace velandoc::standin
