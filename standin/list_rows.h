// A document as a row of its library.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "standin/site.h"

namespace velandoc::standin {

// The attributes of a row, "ows_" in front of each name. A column without a value has none, one
// with an empty value an empty one.
std::vector<std::pair<std::string, std::string>> RowAttributes(const Site& site,
                                                               const DocumentPlace& place);

// The same, cut down to the columns `wanted` and those that rows always have. A name that is
// neither a column's nor an attribute's throws SoapRefusal.
std::vector<std::pair<std::string, std::string>> RowAttributes(
    const Site& site, const DocumentPlace& place, const std::vector<std::string>& wanted);

// The element z:row; the prefix is the caller's to bind, or bound by `declaration`.
std::string RowXml(const std::vector<std::pair<std::string, std::string>>& attributes,
                   std::string_view declaration = {});

}  // namespace velandoc::standin
