// The operations of the lists service that change a document's check-out. Each finds the document's
// site first, so it costs two calls, each on a connection of its own, and both on the default port
// of the URL's scheme.
//
// All raise `_com_error` for a failure of the DOM before an answer came.
#pragma once

#include <cstdint>

#include "platform/text.h"

namespace velandoc {

/// What the server said; false if a call failed or its answer could not be read.
bool CheckOutFile(LPCWSTR pageUrl);

/// The same. `comment` may be null: empty. `checkInType` is 0 for a minor version, 1 for a major
/// one, 2 to overwrite the current one; it goes to the server as it is.
bool CheckInFile(LPCWSTR pageUrl, LPCWSTR comment, std::int32_t checkInType);

/// 0 if the check-out is undone, 1 if the server refused, -1 if a call failed or its answer could
/// not be read: success is 0, unlike the other two, and callers know it so.
std::int32_t UndoCheckOut(LPCWSTR pageUrl);

}  // namespace velandoc
