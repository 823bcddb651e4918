#include "soap/lists_service.h"

#include "connection/url_components.h"
#include "platform/dom.h"
#include "soap/read_or.h"
#include "soap/soap_connection.h"
#include "soap/soap_namespaces.h"

namespace velandoc {
namespace {

bool HasListCollection(LPCWSTR url) {
  const WideString endpoint = AppendListsPath(GetServerRoot(url));
  const CSoapEnvelope envelope(OLESTR("GetListCollection"));
  CSoapConnection connection(endpoint.c_str());
  ComPtr<IXMLDOMDocument2> response;
  if (FAILED(connection.Call(envelope, response))) return false;
  // Fetched and dropped: an answer that cannot be written out again does not count.
  GetNodeXml(response.Get());
  const auto result = SelectSingleNode(response.Get(), OLESTR("//resp:GetListCollectionResult"));
  return static_cast<bool>(result);
}

}  // namespace

bool GetListCollection(LPCWSTR url) {
  return ReadOr(false, [&] { return HasListCollection(url); });
}

}  // namespace velandoc
