#include "standin/webs_service.h"

#include "standin/page_url.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

// Nothing needs to be at the page's address. The host and the port are the page's, since the
// server has no names of its own.
std::string WebUrlFromPageUrl(const SoapContext& context) {
  const PageUrl url = ParsePageUrl(context.Text("pageUrl"));
  const Web* web = context.site.FindWebOf(url.path);
  if (!web) throw SoapRefusal("There is no web for this URL.");
  return EscapeMarkup(web->path == "/" ? url.root : url.root + web->path);
}

const SoapOperation kOperations[] = {
    {"WebUrlFromPageUrl", {{"pageUrl"}}, WebUrlFromPageUrl},
};

}  // namespace

WebsService::WebsService(SiteStore& sites)
    : SoapService(sites, "Webs Web Service", "/_vti_bin/webs.asmx",
                  "http://schemas.microsoft.com/sharepoint/soap/", kOperations) {}

}  // namespace velandoc::standin
