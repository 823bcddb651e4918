// What came of an update of a document's row.
#pragma once

#include <string>

#include "fields/row_attributes.h"
#include "hosts/command/document_session.h"

namespace velandoc {

/// Looks at the update, the session's latest request if there is one behind the first
/// `firstRecord`. kExitSuccess, and the row as the server then has it in `row`, if the server took
/// it; else the reason is told and the result is the exit code. `exception` is what the update
/// raised, empty for nothing.
int ReviewUpdate(const DocumentSession& session, std::size_t firstRecord,
                 const std::string& exception, RowAttributes& row);

}  // namespace velandoc
