// What a WebHDFS request is addressed with, and the URLs that are made of it.
#pragma once

#include <cstdint>
#include <map>

#include "platform/text.h"

namespace velandoc {

inline constexpr std::uint16_t kWebHdfsPort = 50070;
inline constexpr std::uint16_t kSecureWebHdfsPort = 50470;

/// The addressing state of a client; a plain value. The building of a URL does not fail: a URL that
/// is of no use shows when a connection is opened with it.
struct HdfsAddress {
  /// Scheme, host, and the port unless it is the scheme's own (80 or 443); no slash at the end.
  /// Empty without a server name. A name of more than 256 characters is left out, and the port
  /// with it.
  WideString BuildBaseUrl() const;
  /// The base URL, "/webhdfs/v1" and the encoded path. Without a server name it begins at
  /// "/webhdfs/v1".
  WideString BuildPathUrl() const;
  /// The path's URL with `op` and the user's name, if there is one, as they stand.
  WideString BuildOpUrl(WideView op) const;

  /// Takes scheme, host and port of an http or https URL; its path, user name and password play no
  /// part. The ports 80 and 443 and no port stand for the name node's usual one (kWebHdfsPort,
  /// kSecureWebHdfsPort).
  ///
  /// False, with nothing changed, for a URL that does not parse or has another scheme; false with
  /// scheme and host taken over if the host is empty, and with scheme, host and port taken over if
  /// the URL has a query or a fragment.
  bool ParseBaseUrl(LPCWSTR url);

  WideString m_serverName;  // the host alone
  std::uint16_t m_port = kWebHdfsPort;
  WideString m_hdfsPath;                  // not escaped
  VARIANT_BOOL m_secure = VARIANT_FALSE;  // any value but 0 stands for https
  WideString m_userName;                  // sent as "user.name", as it stands
  WideString m_op = OLESTR("OPEN");
};

/// An address with query parameters of its own, in the order of their keys' code units.
struct HdfsRequestParams : HdfsAddress {
  /// BuildOpUrl, and "&key=value" for each parameter; the values are encoded, the keys are not.
  WideString BuildFullUrl(WideView op) const;
  /// Adds the parameter or replaces its value. Nothing takes one away again.
  void SetQueryParam(WideView key, WideView value);

  std::map<WideString, WideString> m_queryParams;
};

}  // namespace velandoc
