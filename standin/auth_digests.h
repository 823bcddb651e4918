// The hashes and the chance that authentication needs.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velandoc::standin {

// Both 16 bytes.
std::string Md5(std::string_view bytes);
std::string HmacMd5(std::string_view key, std::string_view bytes);
std::string RandomBytes(std::size_t count);

}  // namespace velandoc::standin
