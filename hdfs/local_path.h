// Where a download goes that its caller named no file for.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// `localPath` as it is, unless that is empty. Otherwise a file in the folder for temporary files:
/// with `random` one of a name of its own, which this makes, else one named as what follows the
/// last "/" of `hdfsPath`. Empty if nothing follows it (that is asked with `random` too, although
/// the name plays no part then), or if the system gives no folder or makes no file.
WideString MakeLocalPath(WideView hdfsPath, bool random, WideView localPath);

}  // namespace velandoc
