// The parts of one URL in arrays of fixed size, so that a connection object holds its URL without a
// heap allocation. A URL that does not fit these arrays does not parse.
#pragma once

#include <cstdint>

#include "platform/text.h"

namespace velandoc {

/// A plain value of about 9 KB. Each text is null-ended and its length kept beside it; what stands
/// behind a terminator is never written, read or meant to be compared.
struct UrlComponents {
  // In characters, without the terminator.
  static constexpr std::size_t kSchemeCapacity = 32;
  static constexpr std::size_t kHostCapacity = 256;
  static constexpr std::size_t kUserCapacity = 128;
  static constexpr std::size_t kPasswordCapacity = 128;
  static constexpr std::size_t kPathCapacity = 2048;
  static constexpr std::size_t kExtraCapacity = 2048;

  /// Stands at "http", port 80, everything else empty.
  UrlComponents();

  /// No scheme (index -1), port 0, all texts empty. The constructor's state is another one.
  void Clear();

  WideView SchemeName() const { return {schemeName, schemeNameLength}; }
  WideView HostName() const { return {hostName, hostNameLength}; }
  WideView UserName() const { return {userName, userNameLength}; }
  WideView Password() const { return {password, passwordLength}; }
  WideView UrlPath() const { return {urlPath, urlPathLength}; }
  WideView ExtraInfo() const { return {extraInfo, extraInfoLength}; }

  OLECHAR schemeName[kSchemeCapacity + 1];  // in the spelling of the URL
  OLECHAR hostName[kHostCapacity + 1];
  OLECHAR userName[kUserCapacity + 1];
  OLECHAR password[kPasswordCapacity + 1];
  OLECHAR urlPath[kPathCapacity + 1];
  OLECHAR extraInfo[kExtraCapacity + 1];  // with its leading "?" or "#"
  std::uint16_t port;
  std::int32_t schemeIndex;  // a row of kSchemes, or kUnknownScheme
  std::uint32_t schemeNameLength;
  std::uint32_t hostNameLength;
  std::uint32_t userNameLength;
  std::uint32_t passwordLength;
  std::uint32_t urlPathLength;
  std::uint32_t extraInfoLength;
};

/// Splits `[scheme:][//][user[:password]@]host[:port][/path][?extra or #extra]` into `components`,
/// without unescaping anything. On failure (null or empty text, no scheme, a part longer than its
/// array) `components` is cleared.
bool CrackUrl(LPCWSTR url, UrlComponents& components);

/// Scheme, "://" and host of `url` in its own spelling, with no slash at the end; empty if it does
/// not parse. The port is dropped, so a root always speaks of the scheme's default port.
WideString GetServerRoot(LPCWSTR url);

}  // namespace velandoc
