#include <algorithm>
#include <set>

#include "standin/json_fields.h"
#include "standin/site_json.h"
#include "standin/site_time.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

using nlohmann::json;

constexpr std::size_t kLargestText = std::size_t{4} << 20;
constexpr std::size_t kMostDocuments = 10'000;
constexpr std::size_t kMostOthers = 1'000;
constexpr std::size_t kMostValues = 5'000;

[[noreturn]] void Refuse(const std::string& what) { throw std::invalid_argument(what); }

// The elements of an optional array.
const json& Array(const json& object, const char* key, std::size_t most = kMostOthers) {
  static const json none = json::array();
  const auto found = object.find(key);
  if (found == object.end()) return none;
  if (!found->is_array()) Refuse(std::string(key) + " has to be an array");
  if (found->size() > most)
    Refuse(std::string(key) + ": " + std::to_string(most) + " are the most");
  return *found;
}

std::string Text(const json& object, const char* key) {
  if (!object.contains(key)) Refuse(std::string("there is no \"") + key + "\"");
  return object[key].get<std::string>();
}

std::uint32_t SmallNumber(const json& object, const char* key, std::uint64_t otherwise) {
  const std::uint64_t number = Number(object, key, otherwise);
  if (number > INT32_MAX) Refuse(std::string(key) + " is too large");
  return static_cast<std::uint32_t>(number);
}

std::string Guid(const json& object, const char* key) {
  const std::string guid = Text(object, key);
  // {8A6E2B94-5C3D-4F17-8E21-19D0B7C5F344}
  constexpr std::string_view kForm = "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}";
  const bool isGuid = guid.size() == kForm.size() &&
                      std::equal(guid.begin(), guid.end(), kForm.begin(), [](char c, char form) {
                        const bool isDigit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
                        return form == 'X' ? isDigit : c == form;
                      });
  if (!isGuid) Refuse(guid + " is no GUID in braces and capitals");
  return guid;
}

// A path below something: names between single slashes.
std::string Path(std::string path) {
  if (path.empty() || path.starts_with('/') || path.ends_with('/') ||
      path.find("//") != std::string::npos)
    Refuse("\"" + path + "\" is no path below a folder");
  return path;
}

sys_seconds Time(const std::string& text) {
  const auto time = ParseTime(text);
  if (!time) Refuse("\"" + text + "\" is no time like 2009-07-04T10:11:12Z");
  return *time;
}

Version ParseVersion(const std::string& text) {
  const std::size_t dot = text.find('.');
  if (dot != std::string::npos) {
    const auto major = ParseNumber<std::uint16_t>(std::string_view(text).substr(0, dot));
    const auto minor = ParseNumber<std::uint16_t>(std::string_view(text).substr(dot + 1));
    if (major && minor && *minor < 512) return {*major, *minor};
  }
  Refuse("\"" + text + "\" is no version like 1.0");
}

TimeForm ParseTimeForm(const std::string& name) {
  if (name == "letters") return TimeForm::kLetters;
  if (name == "weekday") return TimeForm::kWeekday;
  Refuse("time_form is letters or weekday");
}

Texts ParseValues(const json& object) {
  Texts values;
  if (!object.contains("values")) return values;
  const json& texts = object["values"];
  if (!texts.is_object()) Refuse("values has to be an object");
  if (texts.size() > kMostValues) Refuse("values: 5000 are the most");
  for (const auto& [name, value] : texts.items()) values[name] = value.get<std::string>();
  return values;
}

Content ParseContent(const json& object) {
  return {ParseValues(object), Time(Text(object, "modified")), object.value("editor", "")};
}

CheckOut ParseCheckOut(const json& object, const Content& now) {
  CheckKeys(object, "check_out", {"user", "time", "before"});
  CheckOut checkOut;
  checkOut.login = Text(object, "user");
  checkOut.time = Time(Text(object, "time"));
  checkOut.before = now;
  if (object.contains("before")) {
    CheckKeys(object["before"], "before", {"values", "modified", "editor"});
    checkOut.before = ParseContent(object["before"]);
  }
  return checkOut;
}

Document ParseDocument(const json& object) {
  CheckKeys(
      object, "document",
      {"path", "unique_id", "item_id", "content_type", "version", "revision", "size", "created",
       "modified", "author", "editor", "comment", "time_form", "check_out", "values", "meta"});
  Document document;
  document.path = Path(Text(object, "path"));
  document.uniqueId = Guid(object, "unique_id");
  document.itemId = SmallNumber(object, "item_id", 0);
  document.contentType = object.value("content_type", "");
  document.version = ParseVersion(object.value("version", "1.0"));
  document.revision = SmallNumber(object, "revision", 1);
  document.size = Number(object, "size", 0);
  document.created = Time(Text(object, "created"));
  document.author = Text(object, "author");
  document.content = ParseContent(object);
  if (document.content.editor.empty()) document.content.editor = document.author;
  document.comment = object.value("comment", "");
  document.timeForm = ParseTimeForm(object.value("time_form", "letters"));
  if (object.contains("check_out") && !object["check_out"].is_null())
    document.checkOut = ParseCheckOut(object["check_out"], document.content);
  const json meta = object.value("meta", json::object());
  if (!meta.is_object() || meta.size() > kMostValues)
    Refuse("meta has to be an object of 5000 keys at most");
  for (const auto& [key, value] : meta.items())
    document.meta[key] = Optional<std::string>(meta, key.c_str());
  return document;
}

Column ParseColumn(const json& object) {
  CheckKeys(object, "column",
            {"name", "display_name", "type", "format", "required", "show_in_file_dialog",
             "source_id", "default", "choices"});
  Column column;
  column.name = Text(object, "name");
  column.displayName = object.value("display_name", column.name);
  column.type = Text(object, "type");
  column.format = object.value("format", "");
  column.isRequired = object.value("required", false);
  column.isInFileDialog = Optional<bool>(object, "show_in_file_dialog");
  column.sourceId = object.value("source_id", "");
  column.defaultValue = Optional<std::string>(object, "default");
  for (const json& choice : Array(object, "choices"))
    column.choices.push_back(choice.get<std::string>());
  return column;
}

ContentType ParseContentType(const json& object, const Library& library) {
  CheckKeys(object, "content type", {"id", "name", "columns"});
  ContentType type;
  type.id = Text(object, "id");
  type.name = Text(object, "name");
  for (const json& name : Array(object, "columns")) {
    type.columns.push_back(name.get<std::string>());
    if (!library.FindColumn(type.columns.back()))
      Refuse("the library has no column " + type.columns.back());
  }
  return type;
}

std::vector<Document> ParseDocuments(const json& object) {
  std::vector<Document> documents;
  for (const json& one : Array(object, "documents", kMostDocuments))
    documents.push_back(ParseDocument(one));
  return documents;
}

Library ParseLibrary(const json& object) {
  CheckKeys(object, "library",
            {"id", "title", "folder", "folders", "minor_versions", "needs_check_out", "columns",
             "content_types", "documents"});
  Library library;
  library.id = Guid(object, "id");
  library.title = Text(object, "title");
  library.folder = Path(Text(object, "folder"));
  for (const json& folder : Array(object, "folders"))
    library.folders.push_back(Path(folder.get<std::string>()));
  library.hasMinorVersions = object.value("minor_versions", true);
  library.needsCheckOut = object.value("needs_check_out", false);
  for (const json& column : Array(object, "columns"))
    library.columns.push_back(ParseColumn(column));
  for (const json& type : Array(object, "content_types"))
    library.contentTypes.push_back(ParseContentType(type, library));
  library.documents = ParseDocuments(object);
  return library;
}

Web ParseWeb(const json& object) {
  CheckKeys(object, "web", {"path", "title", "libraries", "documents"});
  Web web;
  web.path = Text(object, "path");
  if (web.path != "/") {
    if (!web.path.starts_with('/')) Refuse("the path of a web starts with a slash");
    Path(web.path.substr(1));
  }
  web.title = object.value("title", "");
  for (const json& library : Array(object, "libraries"))
    web.libraries.push_back(ParseLibrary(library));
  web.documents = ParseDocuments(object);
  return web;
}

User ParseUser(const json& object) {
  CheckKeys(object, "user", {"id", "login", "name", "email"});
  return {SmallNumber(object, "id", 0), Text(object, "login"), Text(object, "name"),
          object.value("email", "")};
}

// What the parts say of each other.
class Check {
 public:
  explicit Check(const Site& site) : m_site(site) {}

  void Run() {
    if (!m_site.caller.empty()) Login(m_site.caller);
    for (const Web& web : m_site.webs) {
      Once("web", web.path);
      for (const Library& library : web.libraries) Run(web, library);
      for (const Document& document : web.documents) Run(web, nullptr, document);
    }
    if (m_documents > kMostDocuments) Refuse("documents: 10000 are the most");
  }

 private:
  void Run(const Web& web, const Library& library) {
    Once("library", library.id);
    Once("folder", web.path + "//" + library.folder);
    for (const std::string& folder : library.folders)
      Once("folder", web.path + "//" + library.folder + "/" + folder);
    std::set<std::uint32_t> items;
    for (const Document& document : library.documents) {
      Run(web, &library, document);
      if (document.itemId == 0 || !items.insert(document.itemId).second)
        Refuse(document.path + ": item_id has to be there, and to be its own");
      if (!library.FindContentType(document.contentType))
        Refuse(document.path + ": the library has no content type " + document.contentType);
    }
  }

  void Run(const Web& web, const Library* library, const Document& document) {
    ++m_documents;
    Once("document", document.uniqueId);
    Once("path", web.path + "//" + (library ? library->folder + "/" : "") + document.path);
    Login(document.author);
    Login(document.content.editor);
    if (document.checkOut) Login(document.checkOut->login);
    if (!library && (document.itemId != 0 || document.checkOut))
      Refuse(document.path + ": only a library has items and check-outs");
    if (document.version.IsUnborn() && !document.checkOut)
      Refuse(document.path + ": what was never checked in is checked out");
  }

  void Login(const std::string& login) {
    if (!m_site.FindUser(login)) Refuse("there is no user " + login);
  }

  void Once(const std::string& kind, const std::string& name) {
    if (!m_names.insert(kind + " " + LowerAscii(name)).second)
      Refuse("there is more than one " + kind + " " + name);
  }

  const Site& m_site;
  std::set<std::string> m_names;
  std::size_t m_documents = 0;
};

}  // namespace

Site ParseSite(std::string_view text) {
  if (text.size() > kLargestText) Refuse("4 MiB is the largest site");
  const json object = json::parse(text);
  CheckKeys(object, "site", {"clock", "caller", "users", "webs"});
  Site site;
  if (const auto clock = Optional<std::string>(object, "clock")) site.clock = Time(*clock);
  site.caller = object.value("caller", "");
  for (const json& user : Array(object, "users")) site.users.push_back(ParseUser(user));
  for (const json& web : Array(object, "webs")) site.webs.push_back(ParseWeb(web));
  Check(site).Run();
  return site;
}

}  // namespace velandoc::standin
