#include "soap/webs_service.h"

#include "connection/url_components.h"
#include "platform/dom.h"
#include "platform/out_of_memory.h"
#include "soap/read_or.h"
#include "soap/soap_connection.h"

namespace velandoc {
namespace {

bool AskForWebUrl(LPCWSTR pageUrl, Bstr& webUrl) {
  CSoapEnvelope envelope(OLESTR("WebUrlFromPageUrl"));
  envelope.AddParameter(OLESTR("pageUrl"), pageUrl);
  const WideString endpoint = GetServerRoot(pageUrl).append(OLESTR("/_vti_bin/webs.asmx"));
  CSoapConnection connection(endpoint.c_str());
  ComPtr<IXMLDOMDocument2> response;
  if (connection.Call(envelope, response) != S_OK) return false;
  return ReadOr(false, [&] {
    // The response element, not the result inside it: its text is the same.
    const auto answer =
        SelectSingleNode(response.Get(), OLESTR("//resp:WebUrlFromPageUrlResponse"));
    webUrl = Bstr(GetNodeText(answer.Get()));
    return true;
  });
}

}  // namespace

bool WebUrlFromPageUrl(LPCWSTR pageUrl, Bstr& webUrl) {
  return RaiseOutOfMemory([&] { return AskForWebUrl(pageUrl, webUrl); });
}

}  // namespace velandoc
