// The URL of a document, as the operations of the web services take it.
#pragma once

#include <string>
#include <string_view>

#include "standin/site.h"

namespace velandoc::standin {

struct PageUrl {
  std::string root;  // scheme, "://", host and port as given
  std::string path;  // without escapes, with its leading slash
};

// Throws SoapRefusal for an empty URL and for one that is not absolute and of http or https.
PageUrl ParsePageUrl(std::string_view url);

// Throws SoapRefusal also if no document of the site lies there. The host is not looked at.
DocumentPlace DocumentAt(Site& site, std::string_view url);

}  // namespace velandoc::standin
