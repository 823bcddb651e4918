#include <list>
#include <nlohmann/json.hpp>
#include <utility>

#include "hosts/command/dialog_watch.h"
#include "hosts/command/doc_actions.h"
#include "hosts/command/exit_codes.h"
#include "hosts/command/field_questions.h"
#include "hosts/command/json_text.h"
#include "hosts/command/row_update.h"
#include "hosts/command/talk.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

/// What the server has now, a line a field.
void WriteFields(const DocumentSession& session, const Options& options, const RowAttributes& row) {
  nlohmann::ordered_json columns = nlohmann::ordered_json::object();
  std::vector<std::vector<std::string>> rows;
  for (const CFieldRecord& field : session.Own().Fields()) {
    const auto found = row.find(OLESTR("ows_") + field.m_name);
    // A column that is empty may be left out of a row.
    const bool known = found != row.end() && !found->second.empty();
    rows.push_back(
        {VisibleText(field.m_name), known ? VisibleText(found->second) : std::string("(empty)")});
    columns[Utf8FromWide(field.m_name)] = known ? Utf8FromWide(found->second) : "";
  }
  const nlohmann::ordered_json json = {{"url", Utf8FromWide(session.Url())}, {"columns", columns}};
  WriteOutput(options.json ? JsonText(json) : AlignRows(rows));
}

int Cancelled(const std::string& why) {
  Talk("nothing was written: " + why);
  return kExitNo;
}

/// Runs EditFields; the exit code, kExitSuccess if the user said OK.
int ShowDialog(DocumentSession& session, std::string& exception) {
  DialogWatch watch(CurrentPort<DialogHost>());
  const PortScope<DialogHost> scope(watch);
  // What it says is nothing.
  VARIANT_BOOL unfilled = VARIANT_FALSE;
  DocumentSession::Guard(exception, [&] { session.Own().EditFields(&unfilled); });
  if (!exception.empty()) return kExitSuccess;
  if (!watch.Result()) {
    Talk("cannot show the dialog: " + VisibleText(watch.Reason()));
    Talk("with --terminal the questions are asked here");
    return kExitFailure;
  }
  return *watch.Result() == IDOK ? kExitSuccess : Cancelled("the dialog was cancelled");
}

/// Asks on the standard streams and updates; as ShowDialog.
int AskAndUpdate(DocumentSession& session, const Options& options, std::string& exception) {
  if (options.noInput) {
    Talk("nothing was written: --no-input leaves nobody to ask");
    return kExitUsage;
  }
  WriteTalk("Enter keeps the value in brackets, - alone empties it.\n");
  const auto values = AskFields(
      session.Own().Fields(), options.doc.escape, [](const std::string& text) { WriteTalk(text); },
      ReadInputLine);
  if (!values) return Cancelled("the input ended");
  std::list<WideString> sent = *values;
  if (options.doc.escape) {
    for (WideString& value : sent) value = WideFromUtf8(EscapedForUpdate(Utf8FromWide(value)));
  }
  DocumentSession::Guard(exception, [&] { session.Own().UpdateFields(sent); });
  return kExitSuccess;
}

}  // namespace

int EditDocument(DocumentSession& session, const Options& options) {
  if (!session.RowArrived()) {
    Talk("nothing was written: without its row the document's values are not known");
    return kExitIncomplete;
  }
  if (session.Own().Fields().empty()) {
    Talk("the document has no columns to fill in");
    return kExitIncomplete;
  }
  const std::size_t firstRecord = session.Records().size();
  std::string exception;
  const int asked = options.doc.terminal ? AskAndUpdate(session, options, exception)
                                         : ShowDialog(session, exception);
  if (asked != kExitSuccess) return asked;
  RowAttributes row;
  const int outcome = ReviewUpdate(session, firstRecord, exception, row);
  if (outcome == kExitSuccess) WriteFields(session, options, row);
  return outcome;
}

}  // namespace velandoc
