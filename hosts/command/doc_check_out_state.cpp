#include "hosts/command/doc_check_out_state.h"

#include <nlohmann/json.hpp>

#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

constexpr int kNobody = 0;
constexpr int kCaller = 1;

std::optional<bool> FlagOf(const Reply<VARIANT_BOOL>& reply) {
  if (!reply.Answered()) return std::nullopt;
  return reply.value != VARIANT_FALSE;
}

std::string FlagText(const std::optional<bool>& flag) {
  if (!flag.has_value()) return "not known";
  return *flag ? "yes" : "no";
}

nlohmann::ordered_json FlagJson(const std::optional<bool>& flag) {
  return flag.has_value() ? nlohmann::ordered_json(*flag) : nlohmann::ordered_json(nullptr);
}

const char* StateWord(const std::optional<int>& status) {
  if (!status.has_value()) return nullptr;
  return *status == kNobody ? "nobody" : *status == kCaller ? "you" : "other";
}

}  // namespace

CheckOutState ReadCheckOutState(const DocumentSession& session) {
  CheckOutState state;
  const Reply<INT> status = session.Ask(&IClient::GetCheckOutStatus);
  // Without a row the component answers "nobody", which is not known then.
  if (status.Answered() && session.RowArrived()) state.status = status.value;
  state.holder = VisibleText(session.Holder());
  state.caller = VisibleText(session.Own().UserName());
  state.checkedOut = ReadTime(session, session.Ask(&IClient::get_CheckOutTime),
                              OLESTR("vti_sourcecontroltimecheckedout"));
  state.modified = ReadTime(session, session.Ask(&IClient::get_TimeLastModified),
                            OLESTR("vti_timelastmodified"));
  state.modifiedSince = FlagOf(session.Ask(&IClient::get_ModifiedSinceCheckOut));
  state.initialCreation = FlagOf(session.Ask(&IClient::IsInitialCreation));
  state.offerCheckIn = FlagOf(session.Ask(&IClient::ShouldAskForCheckIn));
  const bool readByComponent =
      state.checkedOut.component.has_value() && state.modified.component.has_value();
  if (!readByComponent && state.checkedOut.moment.has_value() &&
      state.modified.moment.has_value()) {
    state.modifiedSinceByServer = *state.modified.moment > *state.checkedOut.moment;
  }
  return state;
}

std::string HolderText(const CheckOutState& state) {
  if (!state.status.has_value()) return "not known";
  if (*state.status == kNobody) return "by nobody";
  return *state.status == kCaller ? "by you (" + state.holder + ")" : "by " + state.holder;
}

std::vector<std::vector<std::string>> CheckOutRows(const CheckOutState& state) {
  std::vector<std::vector<std::string>> rows = {{"checked out", HolderText(state)}};
  const bool held = state.status.has_value() && *state.status != kNobody;
  if (held) rows.push_back({"since", TimeText(state.checkedOut)});
  rows.push_back({"last modified", TimeText(state.modified)});
  if (!held) return rows;
  std::string since = FlagText(state.modifiedSince);
  std::string offer = FlagText(state.offerCheckIn);
  if (state.modifiedSinceByServer.has_value()) {
    since = FlagText(state.modifiedSinceByServer) + ", by the server's times";
    offer += " (the component does not read these times, and says no)";
  }
  rows.push_back({"modified since", since});
  rows.push_back({"first upload", FlagText(state.initialCreation)});
  rows.push_back({"offer check-in", offer});
  return rows;
}

nlohmann::ordered_json CheckOutJson(const CheckOutState& state) {
  nlohmann::ordered_json json;
  json["status"] = nullptr;
  json["checkedOutBy"] = nullptr;
  if (state.status.has_value()) {
    json["status"] = *state.status;
    json["checkedOutBy"] = StateWord(state.status);
  }
  json["holder"] = state.holder;
  json["you"] = state.caller;
  json["checkedOut"] = TimeJson(state.checkedOut);
  json["lastModified"] = TimeJson(state.modified);
  json["modifiedSinceCheckOut"] = FlagJson(state.modifiedSince);
  json["modifiedSinceCheckOutByServerTimes"] = FlagJson(state.modifiedSinceByServer);
  json["initialCreation"] = FlagJson(state.initialCreation);
  json["offerCheckIn"] = FlagJson(state.offerCheckIn);
  return json;
}

}  // namespace velandoc
