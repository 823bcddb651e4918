#include "standin/base64.h"

#include <openssl/evp.h>

namespace velandoc::standin {
namespace {

const unsigned char* Unsigned(std::string_view bytes) {
  return reinterpret_cast<const unsigned char*>(bytes.data());
}

}  // namespace

std::string EncodeBase64(std::string_view bytes) {
  // The encoder writes a terminating zero behind the text.
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
  EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), Unsigned(bytes),
                  static_cast<int>(bytes.size()));
  text.pop_back();
  return text;
}

std::optional<std::string> DecodeBase64(std::string_view text) {
  if (text.size() % 4 != 0 || text.find_first_of(" \t\r\n") != std::string_view::npos)
    return std::nullopt;
  std::string bytes(text.size() / 4 * 3, '\0');
  const int length = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()), Unsigned(text),
                                     static_cast<int>(text.size()));
  if (length < 0) return std::nullopt;
  // The decoder counts the padding as bytes.
  std::size_t padding = 0;
  while (padding < 2 && text.size() > padding && text[text.size() - 1 - padding] == '=') ++padding;
  bytes.resize(static_cast<std::size_t>(length) - padding);
  return bytes;
}

}  // namespace velandoc::standin
