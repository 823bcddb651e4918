// SOAP 1.1 as the server of a SharePoint site speaks it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "standin/response.h"

namespace velandoc::standin {

struct SoapParameter {
  std::string name;
  std::string text;
};

struct SoapCall {
  std::string serviceNamespace;
  std::string method;
  std::vector<SoapParameter> parameters;
};

// Reads an envelope: the one element in its body is the call, the elements below are parameters.
// White space between elements does not matter. On failure nothing, and the reason in `problem`.
std::optional<SoapCall> ParseSoapCall(std::string_view xml, std::string& problem);

// 200 with an envelope around `content`, on one line behind an XML declaration.
Response SoapAnswer(std::string_view content);

// `code` is Client or Server. Faults go out with status 500 unless told otherwise.
Response SoapFault(std::string_view code, std::string_view text, int status = 500);

}  // namespace velandoc::standin
