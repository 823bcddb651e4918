#include "standin/user_group_service.h"

#include "standin/text.h"

namespace velandoc::standin {
namespace {

std::string GetUserInfo(const SoapContext& context) {
  const std::string& login = context.Text("userLoginName");
  // The whole login: what comes without its domain could be anybody's.
  const User* user = context.site.FindUser(login);
  if (!user || !EqualNoCase(user->login, login))
    throw SoapRefusal("User cannot be found.", "0x80131600");
  const std::string id = std::to_string(user->id);
  return "<GetUserInfo><User" + XmlAttribute("ID", id) +
         XmlAttribute("Sid", "S-1-5-21-1004336348-1177238915-682003330-" + id) +
         XmlAttribute("Name", user->name) + XmlAttribute("LoginName", user->login) +
         XmlAttribute("Email", user->email) + XmlAttribute("Notes", "") +
         XmlAttribute("IsSiteAdmin", "False") + XmlAttribute("IsDomainGroup", "False") +
         XmlAttribute("Flags", "0") + " /></GetUserInfo>";
}

const SoapOperation kOperations[] = {
    {"GetUserInfo", {{"userLoginName"}}, GetUserInfo},
};

}  // namespace

UserGroupService::UserGroupService(SiteStore& sites)
    : SoapService(sites, "User Group Web Service", "/_vti_bin/usergroup.asmx",
                  "http://schemas.microsoft.com/sharepoint/soap/directory/", kOperations) {}

}  // namespace velandoc::standin
