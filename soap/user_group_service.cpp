#include "soap/user_group_service.h"

#include "platform/dom.h"
#include "platform/out_of_memory.h"
#include "soap/read_or.h"
#include "soap/soap_connection.h"
#include "soap/soap_namespaces.h"

namespace velandoc {
namespace {

// Empty if the attribute is not wanted, and then it is not looked for.
Bstr ReadAttribute(IXMLDOMNode* user, LPCWSTR attribute, bool isWanted) {
  if (!isWanted) return Bstr();
  const auto attributes = GetNodeAttributes(user);
  return Bstr(GetNodeText(GetNamedItem(attributes.Get(), attribute).Get()));
}

bool AskForUser(LPCWSTR serverRoot, LPCWSTR userLoginName, Bstr* name, Bstr* id) {
  CSoapEnvelope envelope;
  if (envelope.Document() != nullptr) {
    envelope.SetMethod(OLESTR("GetUserInfo"), kSoapDirectoryNamespace);
  }
  envelope.AddParameter(OLESTR("userLoginName"), userLoginName);
  const WideString endpoint =
      WideString(ViewOf(serverRoot)).append(OLESTR("/_vti_bin/usergroup.asmx"));
  CSoapConnection connection(endpoint.c_str());
  ComPtr<IXMLDOMDocument2> response;
  connection.Call(envelope, response);
  if (!response) return false;
  return ReadOr(false, [&] {
    // The element of the method's name stands inside the result.
    const auto user = SelectSingleNode(response.Get(), OLESTR("//resp:GetUserInfo/resp:User"));
    if (!user) return false;
    Bstr idText = ReadAttribute(user.Get(), OLESTR("ID"), id != nullptr);
    Bstr nameText = ReadAttribute(user.Get(), OLESTR("Name"), name != nullptr);
    if (id != nullptr) *id = std::move(idText);
    if (name != nullptr) *name = std::move(nameText);
    return true;
  });
}

}  // namespace

bool GetUserInfo(LPCWSTR serverRoot, LPCWSTR userLoginName, Bstr* name, Bstr* id) {
  return RaiseOutOfMemory([&] { return AskForUser(serverRoot, userLoginName, name, id); });
}

}  // namespace velandoc
