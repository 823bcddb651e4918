#include <nlohmann/json.hpp>

#include "hosts/command/doc_actions.h"
#include "hosts/command/doc_check_out_state.h"
#include "hosts/command/doc_columns.h"
#include "hosts/command/exit_codes.h"
#include "hosts/command/json_text.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

using Rows = std::vector<std::vector<std::string>>;

constexpr LPCWSTR kCreated = OLESTR("vti_timecreated");

struct Section {
  const char* heading;
  Rows rows;
};

std::string SectionsText(const std::vector<Section>& sections) {
  std::string text;
  for (const Section& section : sections) {
    if (!text.empty()) text += "\n";
    text += std::string(section.heading) + "\n" +
            AlignRows(section.rows.empty() ? Rows{{"none"}} : section.rows, /*indent=*/2);
  }
  return text;
}

/// An answer of the object as it is shown: "yes", "no", or why there is none.
std::string FlagText(const Reply<VARIANT_BOOL>& reply) {
  if (!reply.exception.empty()) return reply.exception;
  if (!reply.Answered()) return "not known";
  return reply.value != VARIANT_FALSE ? "yes" : "no";
}

nlohmann::ordered_json FlagJson(const Reply<VARIANT_BOOL>& reply) {
  if (!reply.Answered()) return nullptr;
  return reply.value != VARIANT_FALSE;
}

std::string Shown(WideView text) { return text.empty() ? "not known" : VisibleText(text); }

template <class Map>
Rows RowsOf(const Map& map) {
  Rows rows;
  for (const auto& [name, value] : map) rows.push_back({VisibleText(name), VisibleText(value)});
  return rows;
}

template <class Map>
nlohmann::ordered_json JsonOf(const Map& map) {
  nlohmann::ordered_json json = nlohmann::ordered_json::object();
  for (const auto& [name, value] : map) json[Utf8FromWide(name)] = Utf8FromWide(value);
  return json;
}

std::string MissingText(const DocumentSession& session) {
  if (!session.RowArrived()) return "not known";
  const std::vector<WideString> missing = MissingColumns(session.Own().Fields());
  return missing.empty() ? "nothing" : JoinedText(missing);
}

std::string Text(const DocumentSession& session) {
  const CClient& own = session.Own();
  return SectionsText({
      {"Document",
       {{"URL", Shown(session.Url())},
        {"web", Shown(session.WebUrl())},
        {"web's path", Shown(own.WebPath())},
        {"document's id", Shown(session.DocId())},
        {"list's id", Shown(session.ListId())},
        {"content type", Shown(session.ContentTypeId())},
        {"created", TimeText(ReadTime(session, kCreated))}}},
      {"You", {{"login", Shown(own.UserLogin())}, {"name", Shown(own.UserName())}}},
      {"Check-out", CheckOutRows(ReadCheckOutState(session))},
      {"Columns", ColumnRows(own.Fields(), session.RowArrived())},
      {"Missing", {{"required and empty", MissingText(session)}}},
      {"Answers of the component",
       {{"HasFields", FlagText(session.Ask(&IClient::HasFields))},
        {"HasUnfilledFields", FlagText(session.Ask(&IClient::HasUnfilledFields))},
        {"HasUnfilledRequiredFields", FlagText(session.Ask(&IClient::HasUnfilledRequiredFields))}}},
      {"Row", RowsOf(own.ItemAttributes())},
      {"Meta-info", RowsOf(own.MetaInfo().m_values)},
  });
}

nlohmann::ordered_json Json(const DocumentSession& session) {
  const CClient& own = session.Own();
  nlohmann::ordered_json json = {
      {"url", Utf8FromWide(session.Url())},
      {"webUrl", Utf8FromWide(session.WebUrl())},
      {"webPath", Utf8FromWide(own.WebPath())},
      {"docId", Utf8FromWide(session.DocId())},
      {"listId", Utf8FromWide(session.ListId())},
      {"contentTypeId", Utf8FromWide(session.ContentTypeId())},
      {"created", TimeJson(ReadTime(session, kCreated))},
      {"user", {{"login", Utf8FromWide(own.UserLogin())}, {"name", Utf8FromWide(own.UserName())}}},
      {"checkOut", CheckOutJson(ReadCheckOutState(session))},
      {"modifiedTimeUtcOa", nullptr},
      {"hasFields", FlagJson(session.Ask(&IClient::HasFields))},
      {"hasUnfilledFields", FlagJson(session.Ask(&IClient::HasUnfilledFields))},
      {"hasUnfilledRequiredFields", FlagJson(session.Ask(&IClient::HasUnfilledRequiredFields))},
      {"columns", ColumnsJson(own.Fields(), session.RowArrived())},
      {"row", JsonOf(own.ItemAttributes())},
      {"metaInfo", JsonOf(own.MetaInfo().m_values)}};
  const Reply<DOUBLE> date = session.Ask(&IClient::get_ModifiedTimeUTCOA);
  if (date.Answered()) json["modifiedTimeUtcOa"] = date.value;
  nlohmann::ordered_json missing = nlohmann::ordered_json::array();
  for (const StepFailure& failure : session.Missing()) {
    missing.push_back({{"step", failure.step}, {"host", failure.host}, {"what", failure.what}});
  }
  json["notArrived"] = missing;
  return json;
}

}  // namespace

int ShowDocument(const DocumentSession& session, const Options& options) {
  if (options.json) {
    WriteOutput(JsonText(Json(session)));
  } else {
    WriteOutput(Text(session));
  }
  return session.Missing().empty() ? kExitSuccess : kExitIncomplete;
}

}  // namespace velandoc
