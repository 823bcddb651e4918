#include "tests/unit/platform/windows/winhttp_numbers.h"

#include <windows.h>

#include <winhttp.h>

namespace velandoc::test {

NamedNumbers SystemWinHttpNumbers() { return {VELANDOC_WINHTTP_NUMBERS(VELANDOC_WINHTTP_ROW)}; }

}  // namespace velandoc::test
