// The web service of the site's libraries: their columns and rows, and checking documents out.
#pragma once

#include "standin/soap_service.h"

namespace velandoc::standin {

class ListsService final : public SoapService {
 public:
  explicit ListsService(SiteStore& sites);
};

}  // namespace velandoc::standin
