// Where the registry is kept, for telling a user.
#pragma once

#include <string>

#include "platform/registry.h"

namespace velandoc {

/// The file in UTF-8 that holds `root` (HKEY_CURRENT_USER or HKEY_LOCAL_MACHINE), whether it is
/// there yet or not; empty for a user without a home, and on Windows, where no file is to be looked
/// into.
std::string RegistryPlace(HKEY root);

}  // namespace velandoc
