// The error object that a method leaves on its thread when it returns a failing HRESULT without an
// exception.
#pragma once

#include "platform/com.h"

namespace velandoc {

/// Rows of the string table that errors speak in.
inline constexpr WORD kUnknownConnectionError = 101;  // a description
inline constexpr WORD kConnectSource = 102;
inline constexpr WORD kReadError = 103;  // a description
inline constexpr WORD kUploadSource = 104;
inline constexpr WORD kCreateFolderSource = 105;

/// Makes the calling thread's error object: `description`, a row of the string table as the
/// source, and `guid`, which is the class id of the client that reports, not an interface's. Where
/// the system can't make one the thread's error object stays as it is; nothing is reported.
void SetRichError(LPCWSTR description, WORD sourceStringId, REFGUID guid);

}  // namespace velandoc
