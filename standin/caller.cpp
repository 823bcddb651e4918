#include "standin/caller.h"

namespace velandoc::standin {
namespace {

const std::string& LoginOf(const Site& site, const Request& request) {
  return request.user.empty() ? site.caller : request.user;
}

}  // namespace

const User* FindCaller(const Site& site, const Request& request) {
  return site.FindUser(LoginOf(site, request));
}

std::string CallerLogin(const Site& site, const Request& request) {
  const User* user = FindCaller(site, request);
  return user ? user->login : LoginOf(site, request);
}

}  // namespace velandoc::standin
