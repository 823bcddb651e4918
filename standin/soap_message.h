// SOAP 1.1 as the server of a SharePoint site speaks it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "standin/response.h"

namespace velandoc::standin {

struct XmlElement {
  std::string name;
  // Empty: none.
  std::string elementNamespace;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::vector<XmlElement> children;
  // All text in it and below.
  std::string text;

  // Null when there is no such attribute.
  const std::string* Attribute(std::string_view name) const;
};

// A parameter's element; a simple one has text and no children.
using SoapParameter = XmlElement;

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

// ` name="value"` with all escaped that would not survive in an attribute, line ends too.
std::string XmlAttribute(std::string_view name, std::string_view value);

// `code` is Client or Server. Faults go out with status 500 unless told otherwise.
Response SoapFault(std::string_view code, std::string_view text, int status = 500);

// The fault of a service that could not do what it was asked: `text` and `errorCode` ("0x82000006",
// none where empty) stand in the detail.
Response ServiceFault(std::string_view text, std::string_view errorCode);

}  // namespace velandoc::standin
