#include "standin/page_url.h"

#include "standin/soap_service.h"
#include "standin/text.h"
#include "standin/utf8.h"

namespace velandoc::standin {

PageUrl ParsePageUrl(std::string_view url) {
  if (url.empty()) throw SoapRefusal("The URL of the page is missing.", "0x82000001");
  const std::size_t colon = url.find("://");
  const bool isHttp =
      colon != std::string_view::npos &&
      (EqualNoCase(url.substr(0, colon), "http") || EqualNoCase(url.substr(0, colon), "https"));
  const std::size_t host = colon + 3;
  const std::size_t slash = isHttp ? url.find_first_of("/?#", host) : 0;
  if (!isHttp || slash == host || url.size() == host)
    throw SoapRefusal("Invalid URI: The format of the URI could not be determined.");
  PageUrl parsed;
  parsed.root = url.substr(0, slash);
  if (slash != std::string_view::npos)
    parsed.path = UnescapeUrl(url.substr(slash, url.find_first_of("?#", slash) - slash));
  if (!parsed.path.starts_with('/')) parsed.path.insert(0, 1, '/');
  if (!IsUtf8(parsed.path)) parsed.path = Utf8OfLatin1(parsed.path);
  return parsed;
}

DocumentPlace DocumentAt(Site& site, std::string_view url) {
  const PageUrl parsed = ParsePageUrl(url);
  const DocumentPlace place = site.FindDocument(parsed.path);
  if (!place.document)
    throw SoapRefusal("The file \"" + parsed.path + "\" does not exist on this server.");
  return place;
}

}  // namespace velandoc::standin
