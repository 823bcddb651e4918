// The doc commands, each on a document that is open. All return the exit code.
#pragma once

#include "hosts/command/document_session.h"
#include "hosts/command/options.h"

namespace velandoc {

int ShowDocument(const DocumentSession& session, const Options& options);
int ShowMeta(const DocumentSession& session, const Options& options);
int ShowStatus(const DocumentSession& session, const Options& options);
int ShowFields(const DocumentSession& session, const Options& options);
int SetColumns(const DocumentSession& session, const Options& options);
/// In the dialog, or field by field on the standard streams.
int EditDocument(DocumentSession& session, const Options& options);
/// Check out, check in, undo.
int ChangeCheckOut(const DocumentSession& session, const Options& options);

}  // namespace velandoc
