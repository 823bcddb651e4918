// What an upload sends.
#pragma once

#include "platform/owners.h"

namespace velandoc {

/// The stream that `source` stands for: over the local file that a BSTR names, or the IStream of
/// an object, at the position that it has. `permissions` are looked at first; empty ones are not
/// sent. A failing result, with `stream` null: E_INVALIDARG for permissions that are not three
/// octal digits, the system's for a file that can't be opened, E_NOINTERFACE for an object without
/// a stream and for anything else. Raises `_com_error` if an object fails in another way to say
/// whether it has a stream.
HRESULT OpenUploadSource(const VARIANT& source, WideView permissions, ComPtr<IStream>& stream);

}  // namespace velandoc
