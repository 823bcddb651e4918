// MD4 (RFC 1320): NTLM hashes passwords with it, and OpenSSL has moved it out of the default
// provider.
#pragma once

#include <string>
#include <string_view>

namespace velandoc::standin {

// The 16 bytes of the digest.
std::string Md4(std::string_view bytes);

}  // namespace velandoc::standin
