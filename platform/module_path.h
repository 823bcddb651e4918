// Where the component's own library lies.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// The library's handle: what the loader knows it by. For the unit tests, which hold the library's
/// code in themselves, the program's.
HINSTANCE GetModuleInstance();

/// Full path of the file. Raises `_com_error` if the system can't tell it or it passes 32767
/// characters.
WideString GetModulePath();

}  // namespace velandoc
