// XML that comes inside a parameter.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "standin/soap_message.h"

namespace velandoc::standin {

// The one element in a parameter, if it is called `name` and stands with all below it in no
// namespace; else null. All of it may stand in the parameter's namespace too: serialisers are known
// that lose the declaration xmlns="", and real servers take both.
const XmlElement* FragmentRoot(const XmlElement& parameter, std::string_view name);

// The value of <Query><Where><Eq><FieldRef Name='UniqueId'/><Value Type='string'>, the one query
// that clients are known to send; nothing for any other.
std::optional<std::string> ReadUniqueIdQuery(const XmlElement& query);

// Whether <QueryOptions><ViewAttributes Scope='Recursive'/> is there, or no options; nothing for
// anything else.
std::optional<bool> ReadScope(const XmlElement* options);

// The names in <ViewFields><FieldRef Name=''/>...; nothing for anything else.
std::optional<std::vector<std::string>> ReadViewFields(const XmlElement& viewFields);

}  // namespace velandoc::standin
