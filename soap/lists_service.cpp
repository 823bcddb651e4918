#include "soap/lists_service.h"

#include "connection/url_components.h"
#include "soap/dom.h"
#include "soap/soap_connection.h"
#include "soap/soap_namespaces.h"

namespace velandoc {

bool GetListCollection(LPCWSTR url) {
  bool found = false;
  try {
    const WideString endpoint = AppendListsPath(GetServerRoot(url));
    const CSoapEnvelope envelope(OLESTR("GetListCollection"));
    CSoapConnection connection(endpoint.c_str());
    ComPtr<IXMLDOMDocument2> response;
    if (FAILED(connection.Call(envelope, response))) return false;
    // Fetched and dropped. An answer that cannot be written out again does not count.
    GetNodeXml(response.Get());
    if (SelectSingleNode(response.Get(), OLESTR("//resp:GetListCollectionResult"))) found = true;
  } catch (const _com_error&) {
    // What was found until then counts.
  }
  return found;
}

}  // namespace velandoc
