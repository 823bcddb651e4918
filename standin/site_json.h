// The site as a JSON document, from a file or over the control port. Its form is told in README.md.
#pragma once

#include <string>
#include <string_view>

#include "standin/site.h"

namespace velandoc::standin {

// Throws std::exception with a message that names the mistake: unknown keys, ids and logins that
// nothing has, double ids, paths that cannot be, more of anything than the server holds (4 MiB of
// text, 10,000 documents, 1,000 of the rest, 5,000 values for each document).
Site ParseSite(std::string_view json);

// What ParseSite reads; defaults are written too.
std::string FormatSite(const Site& site);

}  // namespace velandoc::standin
