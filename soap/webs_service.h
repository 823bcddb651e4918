// The webs service: which site a page belongs to.
#pragma once

#include "platform/owners.h"
#include "platform/text.h"

namespace velandoc {

/// Asks the server of `pageUrl`, at its root and on its scheme's default port, for the URL of the
/// page's web, as the server writes it. False, with `webUrl` as it was, if it does not answer with
/// one. Raises `_com_error` for a failure of the DOM before the answer came.
bool WebUrlFromPageUrl(LPCWSTR pageUrl, Bstr& webUrl);

}  // namespace velandoc
