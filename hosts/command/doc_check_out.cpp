// Check out, check in, undo.

#include <nlohmann/json.hpp>

#include "hosts/command/doc_actions.h"
#include "hosts/command/doc_check_out_state.h"
#include "hosts/command/exit_codes.h"
#include "hosts/command/json_text.h"
#include "hosts/command/server_word.h"
#include "hosts/command/talk.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

struct Change {
  const char* verb;       // "check out"
  const char* done;       // "checked out"
  const char* operation;  // of SOAP
};

constexpr Change kCheckOut = {"check out", "checked out", "CheckOutFile"};
constexpr Change kCheckIn = {"check in", "checked in", "CheckInFile"};
constexpr Change kUndo = {"undo the check-out of", "undid the check-out of", "UndoCheckOut"};

const Change& ChangeOf(DocAction action) {
  switch (action) {
    case DocAction::kCheckOut:
      return kCheckOut;
    case DocAction::kCheckIn:
      return kCheckIn;
    default:
      return kUndo;
  }
}

/// True if the server did it.
bool Run(const DocumentSession& session, const DocOptions& options, std::string& exception) {
  if (options.action == DocAction::kUndo) {
    const Reply<INT> reply = session.Ask(&IClient::UndoCheckOut);
    exception = reply.exception;
    return reply.Answered() && reply.value == 0;
  }
  const Reply<VARIANT_BOOL> reply =
      options.action == DocAction::kCheckOut
          ? session.Ask(&IClient::CheckOut)
          : session.CheckIn(WideFromUtf8(options.comment), options.type);
  exception = reply.exception;
  return reply.Answered() && reply.value != VARIANT_FALSE;
}

/// Tells why it was not done; returns the exit code.
int TellRefusal(const DocumentSession& session, const Change& change, std::size_t firstRecord,
                const std::string& exception) {
  const std::string beginning =
      std::string("cannot ") + change.verb + " '" + VisibleText(session.Url()) + "': ";
  const auto& records = session.Records();
  if (!exception.empty()) {
    Talk(beginning + exception);
    return kExitFailure;
  }
  if (records.size() <= firstRecord) {
    Talk(beginning + "no request could be sent");
    return kExitFailure;
  }
  const ExchangeRecord& last = records.back();
  const bool itself = last.operation == change.operation;
  const std::string step =
      itself ? std::string(change.operation) : "the question for the web (WebUrlFromPageUrl)";
  const std::string answer = FindElementText(last.answer, std::string(change.operation) + "Result");
  const std::string state =
      "; the document was checked out " + HolderText(ReadCheckOutState(session));
  if (itself && last.status == 200 && !answer.empty()) {
    Talk(beginning + "the server refused (" + change.operation + " answered " +
         VisibleText(answer) + ")" + state);
    return kExitNo;
  }
  const std::string failure = FailureText(ExplainFailure(step, last, "the answer holds no result"));
  if (itself && IsFault(last.answer)) {
    Talk(beginning + failure + state);
    return kExitNo;
  }
  Talk(beginning + failure);
  return kExitFailure;
}

}  // namespace

int ChangeCheckOut(const DocumentSession& session, const Options& options) {
  const Change& change = ChangeOf(options.doc.action);
  const std::size_t firstRecord = session.Records().size();
  std::string exception;
  if (!Run(session, options.doc, exception)) {
    return TellRefusal(session, change, firstRecord, exception);
  }
  if (options.json) {
    nlohmann::ordered_json json = {{"url", Utf8FromWide(session.Url())}, {"done", change.done}};
    if (options.doc.action == DocAction::kCheckIn) {
      json["comment"] = options.doc.comment;
      json["type"] = options.doc.type;
    }
    WriteOutput(JsonText(json));
  } else {
    WriteOutput(std::string(change.done) + " " + VisibleText(session.Url()) + "\n");
  }
  return kExitSuccess;
}

}  // namespace velandoc
