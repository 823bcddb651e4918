#include "hosts/command/row_update.h"

#include "hosts/command/exit_codes.h"
#include "hosts/command/server_word.h"
#include "hosts/command/step_failure.h"
#include "hosts/command/talk.h"
#include "hosts/command/visible_text.h"
#include "soap/list_items.h"

namespace velandoc {
namespace {

constexpr int kStatusOk = 200;

bool ReadRow(const ExchangeRecord& record, RowAttributes& row) try {
  if (record.error != 0 || record.status != kStatusOk) return false;
  const ComPtr<IXMLDOMDocument2> answer = LoadAnswer(record.answer);
  return answer && ReadRowAttributes(answer.Get(), row);
} catch (const _com_error&) {
  return false;
}

}  // namespace

int ReviewUpdate(const DocumentSession& session, std::size_t firstRecord,
                 const std::string& exception, RowAttributes& row) {
  const std::string beginning = "cannot write '" + VisibleText(session.Url()) + "': ";
  if (!exception.empty()) {
    Talk(beginning + exception);
    return kExitFailure;
  }
  if (session.Records().size() <= firstRecord) {
    Talk(beginning + "no request could be sent");
    return kExitFailure;
  }
  const ExchangeRecord& last = session.Records().back();
  const UpdateVerdict verdict = FindUpdateVerdict(last.answer);
  if (verdict.refused) {
    Talk("the server refused the update: " +
         (verdict.text.empty() ? verdict.code : verdict.text + " (" + verdict.code + ")"));
    return kExitNo;
  }
  if (ReadRow(last, row)) return kExitSuccess;
  Talk(beginning + FailureText(ExplainFailure("UpdateListItems", last, "the answer holds no row")));
  return IsFault(last.answer) ? kExitNo : kExitFailure;
}

}  // namespace velandoc
