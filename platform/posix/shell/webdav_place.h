// A file or folder on a WebDAV server, and the names that it goes by.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/text.h"

namespace velandoc {

/// Texts are UTF-8.
struct WebDavPlace {
  bool isSecure = false;
  std::string host;        // an IPv6 address in brackets
  std::uint16_t port = 0;  // 0: the scheme's own
  /// Empty for the server's root, else "/" before each name. As in a URL that is still to be
  /// escaped: a blank is a blank, but a percent sign begins an escape, and "#" and "?" end the
  /// path.
  std::string path;

  /// Appends the names of `below`, which "/" separates, and escapes the three characters in them.
  /// Empty names are passed over.
  void Append(std::string_view below);

  /// "https://host:port/path"; a port that is the scheme's own is left out.
  std::string Url() const;
  /// "\\host@SSL@port\DavWWWRoot\path".
  std::string UncName() const;
};

/// "\\server[@SSL][@port][\DavWWWRoot]\path", in any case, the scheme's own port or another one of
/// 1 to 65535. One separator at the end is dropped; behind the first two, "/" is one as well. The
/// path is taken as it stands. None for any other text.
std::optional<WebDavPlace> PlaceOfUncName(std::string_view name);

/// "http[s]://[user@]host[:port][/path]", percent escapes in the path read; none for any other
/// text, one with "?" or "#" included.
std::optional<WebDavPlace> PlaceOfShareUrl(std::string_view url);

/// The folder of a share in GVfs's mount: "dav:host=h,ssl=true,user=u,port=8443,prefix=%2Fa", its
/// entries in any order. None for shares of other protocols and for those found by DNS-SD
/// ("dav+sd:"), which have no host name.
std::optional<WebDavPlace> PlaceOfGvfsFolder(std::string_view folder);

}  // namespace velandoc
