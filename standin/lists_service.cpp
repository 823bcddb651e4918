#include "standin/lists_service.h"

#include "standin/soap_message.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

constexpr std::string_view kServicePath = "/_vti_bin/lists.asmx";
constexpr std::string_view kNamespace = "http://schemas.microsoft.com/sharepoint/soap/";
constexpr std::string_view kContentType = "text/xml; charset=utf-8";

struct ListOfSite {
  std::string_view id;
  std::string_view title;
  std::string_view view;
  int baseType;
  int serverTemplate;
  int itemCount;
};

constexpr ListOfSite kLists[] = {
    {"{3F1C7A52-0D5B-4E0A-9B59-6C2F0E4D7A10}", "Announcements",
     "/Lists/Announcements/AllItems.aspx", 0, 104, 3},
    {"{8A6E2B94-5C3D-4F17-8E21-19D0B7C5F344}", "Shared Documents",
     "/Shared Documents/Forms/AllItems.aspx", 1, 101, 12},
    {"{C05D9E77-B1A8-42F6-A3C4-7E8B6F2D1055}", "Tasks", "/Lists/Tasks/AllItems.aspx", 0, 107, 0},
};

Response GetListCollection() {
  std::string content = "<GetListCollectionResponse xmlns=\"";
  content += kNamespace;
  content += "\"><GetListCollectionResult><Lists>";
  for (const ListOfSite& list : kLists) {
    content += "<List DocTemplateUrl=\"\" DefaultViewUrl=\"";
    content += list.view;
    content += "\" ID=\"";
    content += list.id;
    content += "\" Title=\"";
    content += list.title;
    content += "\" Description=\"\" Name=\"";
    content += list.id;
    content += "\" BaseType=\"" + std::to_string(list.baseType);
    content += "\" ServerTemplate=\"" + std::to_string(list.serverTemplate);
    content += "\" Created=\"20090704 08:15:00\" ItemCount=\"" + std::to_string(list.itemCount);
    content += "\" Hidden=\"False\" />";
  }
  content += "</Lists></GetListCollectionResult></GetListCollectionResponse>";
  return SoapAnswer(content);
}

Response Call(const Request& request) {
  const std::string* type = request.Find("Content-Type");
  if (!type || *type != kContentType)
    return SoapFault("Client", "The Content-Type has to be " + std::string(kContentType) + ".");
  const std::string* action = request.Find("SOAPAction");
  if (!action || !action->starts_with(kNamespace))
    return SoapFault("Client", "The SOAPAction header names no operation of this service: " +
                                   (action ? *action : std::string("there is none")));
  std::string problem;
  const auto call = ParseSoapCall(request.body, problem);
  if (!call) return SoapFault("Client", problem);
  if (call->serviceNamespace != kNamespace)
    return SoapFault("Client", "The call stands in another namespace.");
  if (call->method != action->substr(kNamespace.size()))
    return SoapFault("Client", "The call is another one than the SOAPAction header says.");
  if (call->method == "GetListCollection") {
    if (!call->parameters.empty())
      return SoapFault("Client", "GetListCollection takes no parameters.");
    return GetListCollection();
  }
  return SoapFault("Client", "This service has no operation " + call->method + ".");
}

}  // namespace

bool ListsService::Serves(const Request& request) const {
  return LowerAscii(request.path).ends_with(kServicePath);
}

Response ListsService::Answer(const Request& request) {
  if (request.method == "POST") return Call(request);
  if (request.method == "GET" || request.method == "HEAD")
    return HtmlPage(200, "Lists Web Service", "Operations: GetListCollection.");
  return HtmlPage(405, "Method Not Allowed", "This page takes GET and POST.");
}

}  // namespace velandoc::standin
