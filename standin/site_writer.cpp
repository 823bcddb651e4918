#include <nlohmann/json.hpp>

#include "standin/site_json.h"
#include "standin/site_time.h"

namespace velandoc::standin {
namespace {

// Keys in the order in which people read them.
using json = nlohmann::ordered_json;

json ArrayOf(const auto& items, const auto& write) {
  json array = json::array();
  for (const auto& item : items) array.push_back(write(item));
  return array;
}

json WriteValues(const Texts& values) {
  json object = json::object();
  for (const auto& [name, value] : values) object[name] = value;
  return object;
}

json WriteCheckOut(const CheckOut& checkOut) {
  return {{"user", checkOut.login},
          {"time", FormatTime(checkOut.time)},
          {"before",
           {{"modified", FormatTime(checkOut.before.modified)},
            {"editor", checkOut.before.editor},
            {"values", WriteValues(checkOut.before.values)}}}};
}

json WriteDocument(const Document& document) {
  json object = {{"path", document.path},
                 {"unique_id", document.uniqueId},
                 {"item_id", document.itemId},
                 {"content_type", document.contentType},
                 {"version", document.version.Text()},
                 {"revision", document.revision},
                 {"size", document.size},
                 {"created", FormatTime(document.created)},
                 {"modified", FormatTime(document.content.modified)},
                 {"author", document.author},
                 {"editor", document.content.editor},
                 {"comment", document.comment},
                 {"time_form", document.timeForm == TimeForm::kLetters ? "letters" : "weekday"},
                 {"check_out", nullptr},
                 {"values", WriteValues(document.content.values)},
                 {"meta", json::object()}};
  if (document.checkOut) object["check_out"] = WriteCheckOut(*document.checkOut);
  for (const auto& [key, raw] : document.meta) object["meta"][key] = raw ? json(*raw) : json();
  return object;
}

json WriteColumn(const Column& column) {
  json object = {{"name", column.name},           {"display_name", column.displayName},
                 {"type", column.type},           {"format", column.format},
                 {"required", column.isRequired}, {"source_id", column.sourceId},
                 {"choices", column.choices}};
  if (column.isInFileDialog) object["show_in_file_dialog"] = *column.isInFileDialog;
  if (column.defaultValue) object["default"] = *column.defaultValue;
  return object;
}

json WriteContentType(const ContentType& type) {
  return {{"id", type.id}, {"name", type.name}, {"columns", type.columns}};
}

json WriteLibrary(const Library& library) {
  return {{"id", library.id},
          {"title", library.title},
          {"folder", library.folder},
          {"folders", library.folders},
          {"minor_versions", library.hasMinorVersions},
          {"needs_check_out", library.needsCheckOut},
          {"columns", ArrayOf(library.columns, WriteColumn)},
          {"content_types", ArrayOf(library.contentTypes, WriteContentType)},
          {"documents", ArrayOf(library.documents, WriteDocument)}};
}

json WriteWeb(const Web& web) {
  return {{"path", web.path},
          {"title", web.title},
          {"libraries", ArrayOf(web.libraries, WriteLibrary)},
          {"documents", ArrayOf(web.documents, WriteDocument)}};
}

json WriteUser(const User& user) {
  return {{"id", user.id}, {"login", user.login}, {"name", user.name}, {"email", user.email}};
}

}  // namespace

std::string FormatSite(const Site& site) {
  const json object = {{"clock", site.clock ? json(FormatTime(*site.clock)) : json()},
                       {"caller", site.caller},
                       {"users", ArrayOf(site.users, WriteUser)},
                       {"webs", ArrayOf(site.webs, WriteWeb)}};
  return object.dump() + "\n";
}

}  // namespace velandoc::standin
