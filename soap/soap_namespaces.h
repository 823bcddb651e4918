// The namespaces and addresses of the SharePoint web services.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// Of all services but the user directory. Ends in "/", so that a SOAPAction is this and the
/// method's name.
extern const WideString SoapServiceNamespace;

/// Of the user directory's service.
inline constexpr LPCWSTR kSoapDirectoryNamespace =
    OLESTR("http://schemas.microsoft.com/sharepoint/soap/directory/");

/// Of SOAP 1.1 itself.
inline constexpr WideView kSoapEnvelopeNamespace =
    OLESTR("http://schemas.xmlsoap.org/soap/envelope/");

/// The lists service of a web: `webUrl` as it stands, and the service's path with its leading "/".
/// A web URL that ends in "/" gives a double slash, and servers have always been asked that way.
WideString AppendListsPath(WideView webUrl);

}  // namespace velandoc
