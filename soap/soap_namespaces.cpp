#include "soap/soap_namespaces.h"

namespace velandoc {

const WideString SoapServiceNamespace = OLESTR("http://schemas.microsoft.com/sharepoint/soap/");

WideString AppendListsPath(WideView webUrl) {
  return WideString(webUrl).append(OLESTR("/_vti_bin/lists.asmx"));
}

}  // namespace velandoc
