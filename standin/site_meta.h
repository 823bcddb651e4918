// What the site says about itself over FrontPage RPC.
#pragma once

#include <string>

#include "standin/rpc_page.h"
#include "standin/site.h"

namespace velandoc::standin {

// `login` empty: an anonymous caller, about whom nothing is said.
MetaInfo WebMeta(const std::string& login);
MetaInfo DocumentMeta(const Site& site, const DocumentPlace& place);
MetaInfo FolderMeta(const FolderPlace& place);

}  // namespace velandoc::standin
