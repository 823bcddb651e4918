// The web service that tells which web a page belongs to.
#pragma once

#include "standin/soap_service.h"

namespace velandoc::standin {

class WebsService final : public SoapService {
 public:
  explicit WebsService(SiteStore& sites);
};

}  // namespace velandoc::standin
