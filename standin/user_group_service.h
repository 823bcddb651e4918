// The web service of the site's user directory.
#pragma once

#include "standin/soap_service.h"

namespace velandoc::standin {

class UserGroupService final : public SoapService {
 public:
  explicit UserGroupService(SiteStore& sites);
};

}  // namespace velandoc::standin
