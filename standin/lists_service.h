// The web service of a SharePoint site that tells about its lists.
#pragma once

#include "standin/application.h"

namespace velandoc::standin {

// Serves every path that ends in /_vti_bin/lists.asmx, on any host, with any number of slashes in
// front. Strict about SOAPAction (no quotes), Content-Type and the envelope: what a lenient server
// forgives would otherwise never be found.
class ListsService final : public Application {
 public:
  bool Serves(const Request& request) const override;
  Response Answer(const Request& request) override;
};

}  // namespace velandoc::standin
