// SHA-256 of bytes that arrive in pieces.
#pragma once

#include <openssl/evp.h>

#include <memory>
#include <string>
#include <string_view>

namespace velandoc::standin {

class Sha256 {
 public:
  Sha256();
  void Add(std::string_view bytes);
  // Lower-case hexadecimal. The object is spent then.
  std::string Finish();

 private:
  struct Free {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
  };
  std::unique_ptr<EVP_MD_CTX, Free> m_context;
};

std::string Hex(std::string_view bytes);

}  // namespace velandoc::standin
