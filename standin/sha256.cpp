#include "standin/sha256.h"

#include <array>

namespace velandoc::standin {

Sha256::Sha256() : m_context(EVP_MD_CTX_new()) {
  EVP_DigestInit_ex(m_context.get(), EVP_sha256(), nullptr);
}

void Sha256::Add(std::string_view bytes) {
  EVP_DigestUpdate(m_context.get(), bytes.data(), bytes.size());
}

std::string Sha256::Finish() {
  std::array<unsigned char, 32> digest{};
  EVP_DigestFinal_ex(m_context.get(), digest.data(), nullptr);
  return Hex({reinterpret_cast<const char*>(digest.data()), digest.size()});
}

std::string Hex(std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string result;
  result.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    result += kDigits[byte >> 4];
    result += kDigits[byte & 15];
  }
  return result;
}

}  // namespace velandoc::standin
