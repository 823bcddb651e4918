// The document of a page and its script object, as the port's callers see them
// (platform/html_document.h).
#pragma once

#include <memory>

#include "platform/html_document.h"
#include "platform/owners.h"
#include "platform/posix/dialog/confined_page.h"

namespace velandoc {

/// Answers as long as `page` stands and its process lives.
ComPtr<IHTMLDocument2> MakePageDocument(const std::shared_ptr<ConfinedPage>& page);

}  // namespace velandoc
