// Paths on a WebDAV share.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// The HTTP URL of a document on a mapped drive or a UNC path of the system's WebDAV redirector;
/// empty for every other path, and for a URL of more than 1023 characters.
WideString UncToHttpUrl(LPCWSTR path);

}  // namespace velandoc
