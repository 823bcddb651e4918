// Who sends a request.
#pragma once

#include <string>

#include "standin/request.h"
#include "standin/site.h"

namespace velandoc::standin {

// The user whose credentials a rule demanded and got, else the site's caller. Null if the site does
// not know that login or names no caller.
const User* FindCaller(const Site& site, const Request& request);

// As the site spells it, or as it came where the site does not know it; empty without a caller.
std::string CallerLogin(const Site& site, const Request& request);

}  // namespace velandoc::standin
