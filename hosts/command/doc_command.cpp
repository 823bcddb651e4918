#include "hosts/command/doc_command.h"

#include "hosts/command/doc_actions.h"
#include "hosts/command/exit_codes.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

int Run(DocumentSession& session, const Options& options) {
  switch (options.doc.action) {
    case DocAction::kShow:
      return ShowDocument(session, options);
    case DocAction::kMeta:
      return ShowMeta(session, options);
    case DocAction::kStatus:
      return ShowStatus(session, options);
    case DocAction::kFields:
      return ShowFields(session, options);
    case DocAction::kSet:
      return SetColumns(session, options);
    case DocAction::kEdit:
      return EditDocument(session, options);
    default:
      return ChangeCheckOut(session, options);
  }
}

}  // namespace

int RunDoc(const Options& options) {
  DocumentSession session;
  if (!session.Open(options.doc.target)) return kExitNotOpened;
  const int exitCode = Run(session, options);
  return FlushOutput() ? exitCode : kExitOutput;
}

}  // namespace velandoc
