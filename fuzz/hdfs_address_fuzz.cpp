// What holds for every text that addresses a file in HDFS: escaped, parsed as a base URL, and built
// into URLs.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "connection/utf8.h"
#include "hdfs/encode_url_part.h"
#include "hdfs/octal_permissions.h"
#include "hdfs/request_params.h"

namespace velandoc {
namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

/// One unit below 128, by the C library's own formatting.
WideString AsciiEscape(OLECHAR unit) {
  const std::string safe = "./:";
  const bool isWord =
      (unit >= '0' && unit <= '9') || ((unit | 0x20) >= 'a' && (unit | 0x20) <= 'z');
  if (isWord || safe.find(static_cast<char>(unit)) != std::string::npos) return {unit};
  char escape[8];
  const int size = std::snprintf(escape, sizeof escape, "%%%x", static_cast<unsigned>(unit));
  return {escape, escape + size};
}

void CheckEncode(WideView text) {
  WideString kept;
  WideString converted;
  for (const OLECHAR unit : text) {
    const WideString own = EncodeUrlPart({&unit, 1}, false);
    if (unit < 128) {
      kept += AsciiEscape(unit);
      Require(own == AsciiEscape(unit));
    } else {
      kept += unit;
      // Two bytes of UTF-8 or three, each one character of a single-byte code page.
      Require(own.size() == (unit < 0x800 ? 2U : 3U));
      for (const OLECHAR character : own) Require(character >= 128);
    }
    converted += own;
  }
  // Unit by unit, no neighbour looked at.
  Require(EncodeUrlPart(text, true) == kept);
  Require(EncodeUrlPart(text, false) == converted);
}

bool IsSame(const HdfsAddress& one, const HdfsAddress& other) {
  return one.m_serverName == other.m_serverName && one.m_port == other.m_port &&
         one.m_secure == other.m_secure;
}

void CheckParse(const WideString& text) {
  HdfsAddress address;
  address.m_serverName = OLESTR("before");
  address.m_port = 1;
  address.m_secure = 7;
  const HdfsAddress before = address;
  const bool isParsed = address.ParseBaseUrl(text.c_str());
  Require(address.m_hdfsPath.empty() && address.m_userName.empty() && address.m_op == before.m_op);
  if (!isParsed && IsSame(address, before)) return;
  Require(address.m_secure == VARIANT_TRUE || address.m_secure == VARIANT_FALSE);
  if (address.m_serverName.empty()) {
    Require(!isParsed && address.m_port == before.m_port);
    return;
  }
  Require(address.m_serverName.size() <= 256);
  Require(text.find(address.m_serverName) != WideString::npos);
  Require(address.m_port != 0 && address.m_port != 80 && address.m_port != 443);
  if (!isParsed) Require(text.find_first_of(OLESTR("?#")) != WideString::npos);
  // What was taken over is what its own base URL says, unless its host has what ends a host, or
  // keeps it from ending, where it stands behind "//".
  if (address.m_serverName.find_first_of(OLESTR("[]@:/?#")) != WideString::npos) return;
  HdfsAddress again;
  const bool isParsedAgain = again.ParseBaseUrl(address.BuildBaseUrl().c_str());
  Require(isParsedAgain && IsSame(again, address));
}

void CheckBuild(const WideString& text) {
  HdfsRequestParams params;
  params.m_serverName = OLESTR("h");
  params.m_hdfsPath = text;
  params.m_userName = text.substr(0, 3);
  params.SetQueryParam(OLESTR("key"), OLESTR("first"));
  params.SetQueryParam(OLESTR("key"), text);
  params.SetQueryParam(OLESTR("a"), OLESTR("b"));
  const WideString path = params.BuildPathUrl();
  const bool hasSlash = !text.empty() && text.front() == '/';
  Require(path == WideString(OLESTR("http://h:50070/webhdfs/v1"))
                      .append(hasSlash ? OLESTR("") : OLESTR("/"))
                      .append(EncodeUrlPart(text, true)));
  const WideString op = params.BuildOpUrl(OLESTR("X"));
  Require(op.starts_with(path + OLESTR("?op=X")));
  Require(op.ends_with(params.m_userName));
  Require(params.BuildFullUrl(OLESTR("X")) ==
          op + OLESTR("&a=b&key=") + EncodeUrlPart(text, false));
  if (IsValidOctalPermissions(text)) {
    Require(text.size() == 3 && std::stoi(std::string(text.begin(), text.end()), nullptr, 8) < 512);
  }
}

void Check(const WideString& text) {
  CheckEncode(text);
  CheckParse(text.c_str());
  CheckBuild(text);
}

}  // namespace
}  // namespace velandoc

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  velandoc::Check(velandoc::FromUtf8(bytes.c_str()));
  // Any units, unpaired surrogates among them.
  velandoc::WideString units;
  for (std::size_t i = 0; i + 1 < size; i += 2) {
    units += static_cast<OLECHAR>(data[i] | data[i + 1] << 8);
  }
  velandoc::Check(units);
  return 0;
}
