#include "hdfs/request_params.h"

#include <memory>
#include <string>

#include "connection/schemes.h"
#include "connection/url_components.h"
#include "hdfs/encode_url_part.h"

namespace velandoc {

WideString HdfsAddress::BuildBaseUrl() const {
  if (m_serverName.empty()) return {};
  const SchemeRow& scheme = kSchemes[m_secure != VARIANT_FALSE ? kHttpsScheme : kHttpScheme];
  WideString url = WideString(scheme.name).append(OLESTR("://"));
  if (m_serverName.size() > UrlComponents::kHostCapacity) return url;
  url += m_serverName;
  if (m_port != scheme.defaultPort) {
    const std::string port = ":" + std::to_string(m_port);
    url.append(port.begin(), port.end());
  }
  return url;
}

WideString HdfsAddress::BuildPathUrl() const {
  WideString url = BuildBaseUrl().append(OLESTR("/webhdfs/v1"));
  if (m_hdfsPath.empty() || m_hdfsPath.front() != '/') url += '/';
  return url.append(EncodeUrlPart(m_hdfsPath, true));
}

WideString HdfsAddress::BuildOpUrl(WideView op) const {
  WideString url = BuildPathUrl().append(OLESTR("?op=")).append(op);
  if (!m_userName.empty()) url.append(OLESTR("&user.name=")).append(m_userName);
  return url;
}

bool HdfsAddress::ParseBaseUrl(LPCWSTR url) {
  const auto components = std::make_unique<UrlComponents>();
  if (!CrackUrl(url, *components)) return false;
  if (components->schemeIndex != kHttpScheme && components->schemeIndex != kHttpsScheme) {
    return false;
  }
  m_secure = components->schemeIndex == kHttpsScheme ? VARIANT_TRUE : VARIANT_FALSE;
  m_serverName = components->HostName();
  if (m_serverName.empty()) return false;
  // A port that a browser would leave out is not the name node's, even where the URL names it.
  const std::uint16_t port = components->port;
  const bool isUsual = port == 0 || port == 80 || port == 443;
  const std::uint16_t usual = m_secure != VARIANT_FALSE ? kSecureWebHdfsPort : kWebHdfsPort;
  m_port = isUsual ? usual : port;
  return components->ExtraInfo().empty();
}

WideString HdfsRequestParams::BuildFullUrl(WideView op) const {
  WideString url = BuildOpUrl(op);
  for (const auto& [key, value] : m_queryParams) {
    url.append(OLESTR("&")).append(key).append(OLESTR("=")).append(EncodeUrlPart(value, false));
  }
  return url;
}

void HdfsRequestParams::SetQueryParam(WideView key, WideView value) {
  m_queryParams.insert_or_assign(WideString(key), WideString(value));
}

}  // namespace velandoc
