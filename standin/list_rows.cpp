#include "standin/list_rows.h"

#include <algorithm>

#include "standin/site_time.h"
#include "standin/soap_service.h"

namespace velandoc::standin {
namespace {

using Attributes = std::vector<std::pair<std::string, std::string>>;

constexpr std::string_view kAlways[] = {
    "ows_ID",     "ows_UniqueId",         "ows_FSObjType", "ows_FileRef", "ows_owshiddenversion",
    "ows__Level", "ows__ModerationStatus"};

// "12;#Jane Doe", the form of a reference to a user.
std::string UserText(const Site& site, const std::string& login) {
  const User* user = site.FindUser(login);
  return user ? std::to_string(user->id) + ";#" + user->name : login;
}

std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

int LevelOf(const Document& document) {
  if (document.checkOut) return 255;
  return document.version.minor == 0 ? 1 : 2;
}

std::string ExtensionOf(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  const std::size_t slash = path.rfind('/');
  const bool isInName = dot != std::string::npos && (slash == std::string::npos || dot > slash);
  return isInName ? path.substr(dot + 1) : std::string();
}

}  // namespace

Attributes RowAttributes(const Site& site, const DocumentPlace& place) {
  const Document& document = *place.document;
  const Version version = place.library->ShownVersion(document);
  const ContentType* type = place.library->FindContentType(document.contentType);
  const std::string root = place.web->path == "/" ? "" : place.web->path.substr(1) + "/";
  const std::string path = root + place.Path();
  const std::string id = std::to_string(document.itemId);
  // Some columns carry the item's number in front of their value.
  const auto numbered = [&id](const std::string& value) { return id + ";#" + value; };
  Attributes row = {
      {"ows_ID", id},
      {"ows_UniqueId", numbered(document.uniqueId)},
      {"ows_FSObjType", numbered("0")},
      {"ows_ContentTypeId", document.contentType},
      {"ows_ContentType", type ? type->name : ""},
      {"ows_FileRef", numbered(path)},
      {"ows_FileDirRef", numbered(FolderOf(path))},
      {"ows_FileLeafRef", numbered(path.substr(path.rfind('/') + 1))},
      {"ows_File_x0020_Size", numbered(std::to_string(document.size))},
      {"ows_ServerUrl", "/" + path},
      {"ows_Created", RowTime(document.created)},
      {"ows_Modified", RowTime(document.content.modified)},
      {"ows_Author", UserText(site, document.author)},
      {"ows_Editor", UserText(site, document.content.editor)},
      {"ows__UIVersion", std::to_string(version.Number())},
      {"ows__UIVersionString", version.Text()},
      {"ows__Level", std::to_string(LevelOf(document))},
      {"ows__ModerationStatus", "0"},
      {"ows__CheckinComment", numbered(document.comment)},
      {"ows_owshiddenversion", std::to_string(document.revision)},
  };
  if (const std::string extension = ExtensionOf(path); !extension.empty())
    row.emplace_back("ows_DocIcon", extension);
  if (document.checkOut)
    row.emplace_back("ows_CheckoutUser", UserText(site, document.checkOut->login));
  for (const auto& [name, value] : document.content.values) row.emplace_back("ows_" + name, value);
  return row;
}

Attributes RowAttributes(const Site& site, const DocumentPlace& place,
                         const std::vector<std::string>& wanted) {
  const Attributes row = RowAttributes(site, place);
  Attributes cut;
  for (const auto& attribute : row) {
    const bool isAlways =
        std::find(std::begin(kAlways), std::end(kAlways), attribute.first) != std::end(kAlways);
    const bool isWanted =
        std::find(wanted.begin(), wanted.end(), attribute.first.substr(4)) != wanted.end();
    if (isAlways || isWanted) cut.push_back(attribute);
  }
  for (const std::string& name : wanted) {
    const bool isAttribute = std::any_of(row.begin(), row.end(), [&name](const auto& attribute) {
      return attribute.first.substr(4) == name;
    });
    if (!isAttribute && !place.library->FindColumn(name) && name != "CheckoutUser")
      throw SoapRefusal(
          "One or more field types are not installed properly. Go to the list settings page to "
          "delete these fields.",
          "0x81020014");
  }
  return cut;
}

std::string RowXml(const Attributes& attributes, std::string_view declaration) {
  std::string xml = "<z:row";
  for (const auto& [name, value] : attributes) xml += XmlAttribute(name, value);
  xml += declaration;
  return xml + " />";
}

}  // namespace velandoc::standin
