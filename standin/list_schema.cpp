#include "standin/list_schema.h"

#include "standin/site_time.h"
#include "standin/soap_message.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

constexpr std::string_view kShared = "http://schemas.microsoft.com/sharepoint/v3";

// What every document has. The file's name is required, and kept out of clients' dialogs.
std::string OwnColumns() {
  const std::string source = XmlAttribute("SourceID", kShared);
  return "<Field ID=\"{c042a256-787d-4a6f-8a8a-cf6ab767f12d}\" Name=\"ContentType\""
         " DisplayName=\"Content Type\" Type=\"Choice\" ReadOnly=\"TRUE\"" +
         source +
         " />"
         "<Field ID=\"{5f47e085-2150-41dc-b661-442f3027f552}\" Name=\"SelectFilename\""
         " DisplayName=\"Select\" Type=\"Computed\" ReadOnly=\"TRUE\" Hidden=\"TRUE\"" +
         source +
         "><FieldRefs><FieldRef Name=\"ID\" /></FieldRefs>"
         "<DisplayPattern><Field Name=\"ID\" "
         "/><HTML><![CDATA[<b>]]></HTML></DisplayPattern></Field>"
         "<Field ID=\"{8553196d-ec8d-4564-9861-3dbe931050c8}\" Name=\"FileLeafRef\""
         " DisplayName=\"Name\" Type=\"File\" Required=\"TRUE\" ShowInFileDlg=\"FALSE\"" +
         source + " />";
}

std::string ColumnXml(const Library& library, const Column& column) {
  std::string xml =
      "<Field" + XmlAttribute("Name", column.name) + XmlAttribute("StaticName", column.name) +
      XmlAttribute("DisplayName", column.displayName) + XmlAttribute("Type", column.type);
  if (!column.format.empty()) xml += XmlAttribute("Format", column.format);
  xml += XmlAttribute("Required", column.isRequired ? "TRUE" : "FALSE");
  if (column.isInFileDialog)
    xml += XmlAttribute("ShowInFileDlg", *column.isInFileDialog ? "TRUE" : "FALSE");
  // The library's own id is in small letters here, whatever it is elsewhere.
  xml +=
      XmlAttribute("SourceID", column.sourceId.empty() ? LowerAscii(library.id) : column.sourceId);
  std::string content;
  if (column.defaultValue)
    content += "<Default>" + EscapeMarkup(*column.defaultValue) + "</Default>";
  if (!column.choices.empty()) {
    content += "<CHOICES>";
    for (const std::string& choice : column.choices)
      content += "<CHOICE>" + EscapeMarkup(choice) + "</CHOICE>";
    content += "</CHOICES>";
  }
  return content.empty() ? xml + " />" : xml + ">" + content + "</Field>";
}

constexpr std::string_view kDocuments =
    "<XmlDocuments>"
    "<XmlDocument NamespaceURI=\"http://schemas.microsoft.com/sharepoint/v3/contenttype/forms\">"
    "<FormTemplates xmlns=\"http://schemas.microsoft.com/sharepoint/v3/contenttype/forms\">"
    "<Display>DocumentLibraryForm</Display><Edit>DocumentLibraryForm</Edit>"
    "<New>DocumentLibraryForm</New></FormTemplates></XmlDocument>"
    "<XmlDocument NamespaceURI=\"urn:example-com:office:columns\">"
    "<Columns xmlns=\"urn:example-com:office:columns\">"
    "<Field Name=\"Foreign\" Required=\"TRUE\" /></Columns></XmlDocument>"
    "</XmlDocuments>";

}  // namespace

std::string ContentTypeXml(const Library& library, const ContentType& type) {
  std::string xml = "<ContentType" + XmlAttribute("ID", type.id) + XmlAttribute("Name", type.name) +
                    XmlAttribute("Group", "Document Content Types") +
                    XmlAttribute("Description", "") + XmlAttribute("Version", "1") +
                    "><Folder TargetName=\"Forms/Document\" /><Fields>" + OwnColumns();
  for (const std::string& name : type.columns) xml += ColumnXml(library, *library.FindColumn(name));
  xml += "</Fields>";
  xml += kDocuments;
  return xml + "</ContentType>";
}

std::string ListXml(const Web& web, const Library& library) {
  const std::string folder = (web.path == "/" ? "" : web.path) + "/" + library.folder;
  return "<List" + XmlAttribute("DocTemplateUrl", "") +
         XmlAttribute("DefaultViewUrl", folder + "/Forms/AllItems.aspx") +
         XmlAttribute("ID", library.id) + XmlAttribute("Title", library.title) +
         XmlAttribute("Description", "") + XmlAttribute("Name", library.id) +
         XmlAttribute("BaseType", "1") + XmlAttribute("ServerTemplate", "101") +
         XmlAttribute("Created", "20090704 08:15:00") +
         XmlAttribute("ItemCount", std::to_string(library.documents.size())) +
         XmlAttribute("Hidden", "False") + " />";
}

}  // namespace velandoc::standin
