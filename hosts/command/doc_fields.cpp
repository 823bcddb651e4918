#include <nlohmann/json.hpp>

#include "hosts/command/doc_actions.h"
#include "hosts/command/doc_columns.h"
#include "hosts/command/exit_codes.h"
#include "hosts/command/json_text.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"
#include "platform/standard_streams.h"

namespace velandoc {

int ShowFields(const DocumentSession& session, const Options& options) {
  const FieldList& fields = session.Own().Fields();
  const bool complete = session.RowArrived();
  std::vector<WideString> missing;
  if (complete) missing = MissingColumns(fields);
  if (options.json) {
    nlohmann::ordered_json names = nlohmann::ordered_json::array();
    for (const WideString& name : missing) names.push_back(Utf8FromWide(name));
    const nlohmann::ordered_json json = {{"url", Utf8FromWide(session.Url())},
                                         {"columns", ColumnsJson(fields, complete)},
                                         {"missing", names},
                                         {"rowArrived", complete}};
    WriteOutput(JsonText(json));
  } else {
    WriteOutput(AlignRows(ColumnRows(fields, complete)));
    // Without a row nothing is known to be empty.
    if (complete) {
      WriteOutput(missing.empty() ? "nothing that is required is missing\n"
                                  : "required and missing: " + JoinedText(missing) + "\n");
    }
  }
  return complete ? kExitSuccess : kExitIncomplete;
}

}  // namespace velandoc
