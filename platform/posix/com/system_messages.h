// The system's texts of error codes, as Windows gives them with FormatMessage: of COM's results and
// of the system's own codes, plain or inside an HRESULT.
#pragma once

#include <string_view>

#include "platform/posix/com/types.h"

namespace velandoc {

/// Without a line end; empty for a code that has no text.
COM_EXPORT std::u16string_view SystemMessage(DWORD code);

}  // namespace velandoc
