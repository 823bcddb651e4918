#include "frontpage/current_user.h"

#include "frontpage/front_page_connection.h"
#include "platform/out_of_memory.h"
#include "soap/user_group_service.h"

namespace velandoc {

bool QueryUserLogin(LPCWSTR url, Bstr& loginOut) {
  return RaiseOutOfMemory([&] {
    const WideString root = GetServerRoot(url);
    COpenServiceHandler handler;
    CFrontPageConnection connection(root.c_str());
    connection.m_handler = &handler;
    if (!RunRequest(connection)) return false;
    loginOut = Bstr(handler.m_result.m_meta.GetTextValue(OLESTR("vti_username")));
    return true;
  });
}

bool GetCurrentUser(LPCWSTR url, Bstr* loginOut, Bstr* nameOut) {
  Bstr login;
  QueryUserLogin(url, login);
  // The number is asked for and dropped: a user without one is none.
  Bstr name;
  Bstr id;
  if (!GetUserInfo(url, login.Get(), &name, &id)) return false;
  if (loginOut != nullptr) *loginOut = std::move(login);
  if (nameOut != nullptr) *nameOut = std::move(name);
  return true;
}

}  // namespace velandoc
