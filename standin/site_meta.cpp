#include "standin/site_meta.h"

#include <algorithm>

#include "standin/site_time.h"

namespace velandoc::standin {
namespace {

// The letters in front of a column's value: the type, and W for a value that clients may write.
std::string_view PrefixOf(const Column& column) {
  if (column.type == "Number" || column.type == "Currency") return "DW|";
  if (column.type == "Boolean") return "BW|";
  return "SW|";
}

std::string LevelOf(const Document& document) {
  if (document.checkOut) return "IR|255";
  return document.version.minor == 0 ? "IR|1" : "IR|2";
}

void AddCheckOut(const Site& site, const Document& document, MetaInfo& meta) {
  if (!document.checkOut) return;
  const User* user = site.FindUser(document.checkOut->login);
  meta.emplace_back("vti_sourcecontrolcheckedoutby",
                    "SR|" + (user ? user->login : document.checkOut->login));
  meta.emplace_back("vti_sourcecontroltimecheckedout",
                    MetaTime(document.checkOut->time, document.timeForm));
}

void AddColumns(const DocumentPlace& place, MetaInfo& meta) {
  const Document& document = *place.document;
  if (!place.library) return;
  meta.emplace_back("ContentTypeId", "SW|" + document.contentType);
  for (const Column& column : place.library->columns) {
    const auto value = document.content.values.find(column.name);
    if (value != document.content.values.end())
      meta.emplace_back(column.name, std::string(PrefixOf(column)) + value->second);
  }
}

void ApplyRawValues(const Document& document, MetaInfo& meta) {
  for (const auto& raw : document.meta) {
    const auto found = std::find_if(meta.begin(), meta.end(),
                                    [&raw](const auto& pair) { return pair.first == raw.first; });
    if (!raw.second) {
      if (found != meta.end()) meta.erase(found);
    } else if (found == meta.end()) {
      meta.emplace_back(raw.first, *raw.second);
    } else {
      found->second = *raw.second;
    }
  }
}

std::string WithoutBraces(const std::string& guid) { return guid.substr(1, guid.size() - 2); }

}  // namespace

MetaInfo WebMeta(const std::string& login) {
  MetaInfo meta = {{"vti_casesensitiveurls", "IX|0"},    {"vti_longfilenames", "IX|1"},
                   {"vti_welcomenames", "VX|"},          {"vti_servertz", "SX|-0000"},
                   {"vti_sourcecontrolsystem", "SX|lw"}, {"vti_sourcecontrolversion", "SX|V1"}};
  if (!login.empty()) meta.emplace_back("vti_username", "SX|" + login);
  return meta;
}

MetaInfo DocumentMeta(const Site& site, const DocumentPlace& place) {
  const Document& document = *place.document;
  const TimeForm form = document.timeForm;
  const Version version = place.library ? place.library->ShownVersion(document) : document.version;
  const std::string revision = std::to_string(document.revision);
  const auto title = document.content.values.find("Title");
  MetaInfo meta = {
      {"vti_rtag", "SW|rt:" + WithoutBraces(document.uniqueId) + "@" + revision},
      {"vti_etag", "SW|\"" + document.uniqueId + "," + revision + "\""},
      {"vti_parserversion", "SR|12.0.0.6665"},
      {"vti_filesize", "IR|" + std::to_string(document.size)},
      {"vti_title", "SR|" + (title == document.content.values.end() ? "" : title->second)},
      {"vti_author", "SR|" + document.author},
      {"vti_modifiedby", "SR|" + document.content.editor},
      {"vti_timecreated", MetaTime(document.created, form)},
      {"vti_timelastmodified", MetaTime(document.content.modified, form)},
      {"vti_timelastwritten",
       "TX|" + MetaTime(document.content.modified, TimeForm::kLetters).substr(3)},
      {"vti_docstoretype", "IR|0"},
      {"vti_docstoreversion", "IR|" + revision},
      {"vti_level", LevelOf(document)},
      {"vti_sourcecontrolversion", "SR|V" + version.Text()},
      {"vti_sourcecontrolcookie", "SR|fp_internal"},
      {"vti_canmaybeedit", "BX|true"},
  };
  AddCheckOut(site, document, meta);
  AddColumns(place, meta);
  ApplyRawValues(document, meta);
  return meta;
}

MetaInfo FolderMeta(const FolderPlace& place) {
  MetaInfo meta = {{"vti_isexecutable", "BR|false"},
                   {"vti_isscriptable", "BR|false"},
                   {"vti_isbrowsable", "BR|true"},
                   {"vti_hassubdirs", "BR|true"}};
  if (place.library) {
    meta.emplace_back("vti_listname", "SR|" + place.library->id);
    meta.emplace_back("vti_listtitle", "SR|" + place.library->title);
    meta.emplace_back("vti_listservertemplate", "IR|101");
    meta.emplace_back("vti_listbasetype", "IR|1");
    meta.emplace_back("vti_listenablemoderation", "IR|0");
    meta.emplace_back("vti_listrequirecheckout", place.library->needsCheckOut ? "IR|1" : "IR|0");
  }
  return meta;
}

}  // namespace velandoc::standin
