// Download and DownloadPreview as far as they are the same in both clients: the local file.
#pragma once

#include <functional>

#include "platform/mfc/file.h"
#include "platform/text.h"

namespace velandoc {

/// Brings a body into a file. False for a failure, which is told already.
using FetchBody = std::function<bool(CFile& sink)>;

/// Has `fetch` fill `localPath` or, if that is empty, a file of MakeLocalPath. E_INVALIDARG for a
/// path together with `randomName`, E_ACCESSDENIED if the file can't be made or no name is to be
/// had, E_FAIL if `fetch` says false; the file is then gone and `*savedPath` not written. A null
/// `localPath` is an empty one, `savedPath` may be null. Raises what `fetch` raises, without a file
/// too.
HRESULT DownloadToFile(WideView hdfsPath, VARIANT_BOOL randomName, BSTR localPath, BSTR* savedPath,
                       const FetchBody& fetch);

/// The same into a temporary file of a name of its own, with the bytes EF BB BF in front.
HRESULT DownloadToPreview(WideView hdfsPath, BSTR* savedPath, const FetchBody& fetch);

}  // namespace velandoc
