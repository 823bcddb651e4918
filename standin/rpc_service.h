// FrontPage RPC of the site: where a URL lies, what is known of a document or a folder, who calls.
#pragma once

#include "standin/application.h"
#include "standin/site_store.h"

namespace velandoc::standin {

// Serves PATH/_vti_bin/shtml.dll/_vti_rpc and PATH/_vti_bin/_vti_aut/author.dll on any host, PATH
// being a web's. Strict about the two content types, the form of the body and the parameters'
// names and order. What it refuses comes as status 200 and a page with a status block, as real
// servers have it; only a path that is no web's is a 404.
class RpcService final : public Application {
 public:
  // Borrows the site.
  explicit RpcService(SiteStore& sites) : m_sites(sites) {}

  bool Serves(const Request& request) const override;
  Response Answer(const Request& request) override;

 private:
  SiteStore& m_sites;
};

}  // namespace velandoc::standin
