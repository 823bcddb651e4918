#include "connection/url_components.h"

#include "connection/schemes.h"

namespace velandoc {

// Terminators only: zeroing the arrays would cost more than parsing a URL into them.
UrlComponents::UrlComponents() {
  Clear();
  const SchemeRow& http = kSchemes[kHttpScheme];
  http.name.copy(schemeName, http.name.size());
  schemeName[http.name.size()] = 0;
  schemeNameLength = static_cast<std::uint32_t>(http.name.size());
  schemeIndex = kHttpScheme;
  port = http.defaultPort;
}

void UrlComponents::Clear() {
  schemeName[0] = 0;
  hostName[0] = 0;
  userName[0] = 0;
  password[0] = 0;
  urlPath[0] = 0;
  extraInfo[0] = 0;
  port = 0;
  schemeIndex = kUnknownScheme;
  schemeNameLength = 0;
  hostNameLength = 0;
  userNameLength = 0;
  passwordLength = 0;
  urlPathLength = 0;
  extraInfoLength = 0;
}

WideString GetServerRoot(LPCWSTR url) {
  UrlComponents components;
  components.Clear();
  WideString root;
  if (!CrackUrl(url, components)) return root;
  root.append(components.SchemeName()).append(OLESTR("://")).append(components.HostName());
  return root;
}

}  // namespace velandoc
