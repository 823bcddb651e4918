// Which columns a document has.
#pragma once

#include <string_view>
#include <vector>

#include "hosts/command/document_session.h"
#include "platform/text.h"

namespace velandoc {

struct KnownColumn {
  WideString name;         // the internal one
  WideString displayName;  // empty if it is not known
};

/// All columns in the answer to GetListContentType, the component's records being a selection of
/// them; nothing if `answer` is no such answer.
std::vector<KnownColumn> ReadContentTypeColumns(std::string_view answer);

/// Those of the content type, the component's records and the row's attributes. A row leaves out
/// what is empty, and a content type what its library adds: neither alone is enough.
std::vector<KnownColumn> FindKnownColumns(const DocumentSession& session);

}  // namespace velandoc
