// What a request calls.
#pragma once

#include <string>

#include "standin/request.h"

namespace velandoc::standin {

// True for the requests whose operation stands in the body.
bool IsRpcRequest(const Request& request);

// By the SOAPAction header ("GetListItems"), by the query of WebHDFS ("OPEN"), or by the body of an
// RPC request ("open service", without the version behind the colon). Empty for any other request,
// and for an RPC request whose body is not there or not to be understood.
std::string OperationName(const Request& request);

// See Request::role.
std::string RoleName(const Request& request);

}  // namespace velandoc::standin
