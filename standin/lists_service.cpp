#include "standin/lists_service.h"

#include "standin/list_fragments.h"
#include "standin/list_rows.h"
#include "standin/list_schema.h"
#include "standin/list_updates.h"
#include "standin/page_url.h"
#include "standin/site_changes.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

std::string GetListCollection(const SoapContext& context) {
  std::string xml = "<Lists>";
  for (const Library& library : context.web.libraries) xml += ListXml(context.web, library);
  return xml + "</Lists>";
}

Library& FindLibrary(const SoapContext& context) {
  Library* library = context.web.FindLibrary(context.Text("listName"));
  if (!library)
    throw SoapRefusal(
        "List does not exist. The page you selected contains a list that does not exist. It may "
        "have been deleted by another user.",
        "0x82000006");
  return *library;
}

std::string GetListContentType(const SoapContext& context) {
  const Library& library = FindLibrary(context);
  const ContentType* type = library.FindContentType(context.Text("contentTypeId"));
  if (!type) throw SoapRefusal("The content type does not exist in this list.");
  return ContentTypeXml(library, *type);
}

// With a Recursive scope in all folders, without one only at the top of the library.
DocumentPlace FindRow(const SoapContext& context, Library& library) {
  const auto uniqueId = ReadUniqueIdQuery(*context.Element("query"));
  if (!uniqueId) throw SoapRefusal("One or more parts of the query are not valid.", "0x81070057");
  const auto isRecursive = ReadScope(context.Element("queryOptions"));
  if (!isRecursive) throw SoapRefusal("The query options are not valid.", "0x81070057");
  for (Document& document : library.documents) {
    const bool isInScope = *isRecursive || document.path.find('/') == std::string::npos;
    if (isInScope && EqualNoCase(document.uniqueId, *uniqueId))
      return {&context.web, &library, &document};
  }
  return {};
}

std::string RowOf(const SoapContext& context, const DocumentPlace& place) {
  const XmlElement* viewFields = context.Element("viewFields");
  if (!viewFields) return RowXml(RowAttributes(context.site, place));
  const auto names = ReadViewFields(*viewFields);
  if (!names) throw SoapRefusal("The view fields are not valid.", "0x81070057");
  // An element without names asks for the usual columns.
  return RowXml(names->empty() ? RowAttributes(context.site, place)
                               : RowAttributes(context.site, place, *names));
}

std::string GetListItems(const SoapContext& context) {
  const DocumentPlace place = FindRow(context, FindLibrary(context));
  const std::string rows = place.document ? RowOf(context, place) : std::string();
  return "<listitems xmlns:s=\"uuid:BDC6E3F0-6DA3-11d1-A2A3-00AA00C14882\""
         " xmlns:dt=\"uuid:C2F41010-65B3-11d1-A29F-00AA00C14882\""
         " xmlns:rs=\"urn:schemas-microsoft-com:rowset\" xmlns:z=\"#RowsetSchema\">"
         "<rs:data ItemCount=\"" +
         std::string(place.document ? "1" : "0") + "\">" + rows + "</rs:data></listitems>";
}

std::string UpdateItems(const SoapContext& context) {
  return UpdateListItems(context, FindLibrary(context));
}

std::string HolderOf(const Site& site, const Document& document) {
  const User* user = document.checkOut ? site.FindUser(document.checkOut->login) : nullptr;
  return user ? user->login : std::string();
}

// "false" is the answer where there was nothing to do; what somebody else holds is a fault.
std::string ResultText(const SoapContext& context, const DocumentPlace& place,
                       ChangeResult result) {
  switch (result) {
    case ChangeResult::kDone:
      return "true";
    case ChangeResult::kUnchanged:
      return "false";
    case ChangeResult::kHeldByOther:
      throw SoapRefusal("The file \"" + place.Path() + "\" is checked out for editing by " +
                            HolderOf(context.site, *place.document) + ".",
                        "0x80070021");
    case ChangeResult::kNotInLibrary:
      break;
  }
  throw SoapRefusal("The file \"" + place.Path() + "\" is not in a document library.");
}

// Only documents of the web that is asked.
DocumentPlace FindPage(const SoapContext& context) {
  const DocumentPlace place = DocumentAt(context.site, context.Text("pageUrl"));
  if (place.web != &context.web)
    throw SoapRefusal("The file \"" + place.Path() + "\" is not in this web.");
  return place;
}

std::string CheckOutFile(const SoapContext& context) {
  const std::string& local = context.Text("checkOutToLocal");
  if (!EqualNoCase(Trim(local), "true") && !EqualNoCase(Trim(local), "false"))
    throw SoapRefusal("String was not recognized as a valid Boolean.");
  const DocumentPlace place = FindPage(context);
  return ResultText(context, place, CheckOutDocument(context.site, place, context.Caller()));
}

std::string CheckInFile(const SoapContext& context) {
  const auto type = ParseNumber<unsigned>(Trim(context.Text("checkinType")));
  if (!type || *type > static_cast<unsigned>(CheckInType::kOverwrite))
    throw SoapRefusal("The type of the check-in is 0, 1 or 2.");
  const DocumentPlace place = FindPage(context);
  const ChangeResult result =
      CheckInDocument(context.site, place, context.Caller(), static_cast<CheckInType>(*type),
                      context.Text("comment"));
  return ResultText(context, place, result);
}

std::string UndoCheckOut(const SoapContext& context) {
  const DocumentPlace place = FindPage(context);
  return ResultText(context, place, UndoCheckOutOfDocument(context.site, place, context.Caller()));
}

const SoapOperation kOperations[] = {
    {"GetListCollection", {}, GetListCollection},
    {"GetListContentType", {{"listName"}, {"contentTypeId"}}, GetListContentType},
    {"GetListItems",
     {{"listName"}, {"query", true}, {"queryOptions", true, true}, {"viewFields", true, true}},
     GetListItems},
    {"UpdateListItems", {{"listName"}, {"updates", true, true}}, UpdateItems},
    {"CheckOutFile", {{"pageUrl"}, {"checkOutToLocal"}}, CheckOutFile},
    {"CheckInFile", {{"pageUrl"}, {"comment"}, {"checkinType"}}, CheckInFile},
    {"UndoCheckOut", {{"pageUrl"}}, UndoCheckOut},
};

}  // namespace

ListsService::ListsService(SiteStore& sites)
    : SoapService(sites, "Lists Web Service", "/_vti_bin/lists.asmx",
                  "http://schemas.microsoft.com/sharepoint/soap/", kOperations) {}

}  // namespace velandoc::standin
