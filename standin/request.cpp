#include "standin/request.h"

#include "standin/text.h"

namespace velandoc::standin {

const std::string* Request::Find(std::string_view name) const {
  for (const Header& header : headers)
    if (EqualNoCase(header.name, name)) return &header.value;
  return nullptr;
}

bool Request::Lists(std::string_view name, std::string_view token) const {
  for (const Header& header : headers) {
    if (!EqualNoCase(header.name, name)) continue;
    std::string_view rest = header.value;
    while (!rest.empty()) {
      const std::size_t comma = rest.find(',');
      if (EqualNoCase(Trim(rest.substr(0, comma)), token)) return true;
      if (comma == std::string_view::npos) break;
      rest.remove_prefix(comma + 1);
    }
  }
  return false;
}

}  // namespace velandoc::standin
