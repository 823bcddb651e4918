#include <algorithm>
#include <list>
#include <nlohmann/json.hpp>

#include "hosts/command/doc_actions.h"
#include "hosts/command/exit_codes.h"
#include "hosts/command/json_text.h"
#include "hosts/command/known_columns.h"
#include "hosts/command/row_update.h"
#include "hosts/command/talk.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"
#include "platform/dom.h"
#include "platform/standard_streams.h"
#include "soap/list_items.h"

namespace velandoc {
namespace {

/// What UpdateListItems is given.
struct Update {
  WideString fileRef;
  WideString itemId;
  std::list<WideString> names;
  std::list<WideString> values;  // in the form in which they go out
};

WideString RowName(const WideString& column) { return OLESTR("ows_") + column; }

/// A lookup's value is its number, ";#" and the text; the row's number may come so, too.
WideString ItemId(const RowAttributes& row) {
  const auto found = row.find(OLESTR("ows_ID"));
  if (found == row.end()) return {};
  const std::size_t at = found->second.find(OLESTR(";#"));
  return at == WideString::npos ? found->second : found->second.substr(at + 2);
}

bool HasColumn(const std::vector<KnownColumn>& columns, const WideString& name) {
  return std::any_of(columns.begin(), columns.end(),
                     [&](const KnownColumn& column) { return column.name == name; });
}

/// The internal name of the one column that is shown under `title`; empty if none or several are.
WideString NameBehind(const std::vector<KnownColumn>& columns, const WideString& title) {
  WideString found;
  for (const KnownColumn& column : columns) {
    if (column.displayName != title || column.name == found) continue;
    if (!found.empty()) return {};
    found = column.name;
  }
  return found;
}

/// Whether all columns exist; those that do not are told.
bool CheckNames(const DocumentSession& session, const std::vector<Assignment>& assignments) {
  const std::vector<KnownColumn> columns = FindKnownColumns(session);
  bool good = true;
  for (const Assignment& assignment : assignments) {
    const WideString name = WideFromUtf8(assignment.name);
    if (HasColumn(columns, name)) continue;
    good = false;
    const WideString meant = NameBehind(columns, name);
    Talk("the document has no column '" + VisibleText(name) + "'" +
         (meant.empty() ? ": 'velandoc doc show' names them"
                        : ": the column of that title is named '" + VisibleText(meant) + "'"));
  }
  return good;
}

/// Reads the update as the request will: true if each value comes out as `wanted` says and the
/// document's address as it went in.
bool SurvivesXml(const Update& update, const std::list<WideString>& wanted) try {
  const WideString batch =
      BuildUpdateBatch(update.itemId.c_str(), update.fileRef.c_str(), update.names, update.values);
  ComPtr<IXMLDOMDocument2> document;
  if (FAILED(LoadDomDocument(Bstr(batch), document))) return false;
  const auto text = [&](const WideString& xpath) {
    return GetNodeText(SelectSingleNode(document.Get(), xpath).Get());
  };
  if (text(OLESTR("//FileRef")) != update.fileRef) return false;
  int place = 2;  // the first Field is the row's ID
  for (const WideString& value : wanted) {
    const WideString xpath =
        OLESTR("//Field[") + WideFromUtf8(std::to_string(place++)) + OLESTR("]");
    if (text(xpath) != value) return false;
  }
  return true;
} catch (const _com_error&) {
  return false;
}

/// Warns of what the server has made of a value.
void TellDifferences(const std::vector<Assignment>& assignments, const RowAttributes& row) {
  for (const Assignment& assignment : assignments) {
    const WideString name = WideFromUtf8(assignment.name);
    const auto found = row.find(RowName(name));
    if (found == row.end() || found->second == WideFromUtf8(assignment.value)) continue;
    Talk("warning: the server keeps '" + VisibleText(found->second) + "' in column '" +
         VisibleText(name) + "'");
  }
}

void WriteResult(const DocumentSession& session, const Options& options, const RowAttributes& row) {
  nlohmann::ordered_json columns = nlohmann::ordered_json::object();
  std::vector<std::vector<std::string>> rows;
  for (const Assignment& assignment : options.doc.assignments) {
    const auto found = row.find(RowName(WideFromUtf8(assignment.name)));
    nlohmann::ordered_json now = nullptr;
    if (found != row.end()) now = Utf8FromWide(found->second);
    // A column that is empty may be left out of a row.
    rows.push_back({VisibleText(assignment.name),
                    found != row.end() ? VisibleText(found->second) : std::string("(empty)")});
    columns[assignment.name] = {{"written", assignment.value}, {"now", now}};
  }
  const nlohmann::ordered_json json = {{"url", Utf8FromWide(session.Url())}, {"columns", columns}};
  WriteOutput(options.json ? JsonText(json) : AlignRows(rows));
}

}  // namespace

int SetColumns(const DocumentSession& session, const Options& options) {
  const CClient& own = session.Own();
  if (!session.RowArrived()) {
    Talk("nothing was written: without its row the document's columns are not known");
    return kExitIncomplete;
  }
  if (!CheckNames(session, options.doc.assignments)) {
    Talk("nothing was written");
    return kExitUnknownName;
  }

  Update update{session.Url(), ItemId(own.ItemAttributes()), {}, {}};
  if (update.itemId.empty()) {
    Talk("nothing was written: the document's row has no ID");
    return kExitIncomplete;
  }
  std::list<WideString> wanted;
  for (const Assignment& assignment : options.doc.assignments) {
    update.names.push_back(WideFromUtf8(assignment.name));
    wanted.push_back(WideFromUtf8(assignment.value));
    update.values.push_back(options.doc.escape ? WideFromUtf8(EscapedForUpdate(assignment.value))
                                               : wanted.back());
  }
  if (!SurvivesXml(update, wanted)) {
    Talk(
        "nothing was written: the update cannot carry a value, or the document's URL, as it is"
        " (type & in a URL as %26)");
    return kExitUsage;
  }

  const std::size_t firstRecord = session.Records().size();
  RowAttributes row;
  std::string exception;
  DocumentSession::Guard(exception, [&] {
    UpdateListItems(update.fileRef.c_str(), session.WebUrl().c_str(), session.ListId().c_str(),
                    update.itemId.c_str(), update.names, update.values, row);
  });
  const int outcome = ReviewUpdate(session, firstRecord, exception, row);
  if (outcome != kExitSuccess) return outcome;
  WriteResult(session, options, row);
  TellDifferences(options.doc.assignments, row);
  return kExitSuccess;
}

}  // namespace velandoc
