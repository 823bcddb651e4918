#include "standin/auth_digests.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <stdexcept>

namespace velandoc::standin {
namespace {

unsigned char* Unsigned(std::string& bytes) {
  return reinterpret_cast<unsigned char*>(bytes.data());
}

}  // namespace

std::string Md5(std::string_view bytes) {
  std::string digest(16, '\0');
  if (EVP_Digest(bytes.data(), bytes.size(), Unsigned(digest), nullptr, EVP_md5(), nullptr) != 1)
    throw std::runtime_error("MD5 is not to be had");
  return digest;
}

std::string HmacMd5(std::string_view key, std::string_view bytes) {
  std::string digest(16, '\0');
  if (!HMAC(EVP_md5(), key.data(), static_cast<int>(key.size()),
            reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), Unsigned(digest),
            nullptr))
    throw std::runtime_error("HMAC-MD5 is not to be had");
  return digest;
}

std::string RandomBytes(std::size_t count) {
  std::string bytes(count, '\0');
  if (RAND_bytes(Unsigned(bytes), static_cast<int>(count)) != 1)
    throw std::runtime_error("no random bytes");
  return bytes;
}

}  // namespace velandoc::standin
