// Points in time as the site's pages and its file write them. All are in UTC.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "standin/site.h"

namespace velandoc::standin {

// "2009-07-04T10:11:12Z", with neither fractions nor another zone; nothing for anything else.
std::optional<sys_seconds> ParseTime(std::string_view text);
// The same form.
std::string FormatTime(sys_seconds time);

// A raw meta-info value.
std::string MetaTime(sys_seconds time, TimeForm form);
// "2009-07-04 10:11:12", as list rows write it.
std::string RowTime(sys_seconds time);
// "20090704 10:11:12", as list collections write it.
std::string ListTime(sys_seconds time);

}  // namespace velandoc::standin
