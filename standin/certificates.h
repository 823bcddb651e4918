// The certificates that the server shows, one for each kind of mistake.
#pragma once

#include <openssl/ssl.h>

#include <array>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace velandoc::standin {

enum class CertificateKind {
  kGood,
  kExpired,
  kNotYet,
  kOtherName,
  kUnknownCa,
  kSelfSigned,
  kAllWrong,
  kClientCert,  // Good, but a certificate of the client is demanded.
};
inline constexpr std::size_t kCertificateKinds = 8;

std::optional<CertificateKind> ParseCertificateKind(std::string_view name);
// KIND.example.test has that kind, every other name the good one.
CertificateKind KindOfHost(std::string_view host);

class Certificates {
 public:
  // Reads KIND.pem, KIND.key and ca.pem in `directory`. Throws std::runtime_error when one is
  // missing or does not fit.
  explicit Certificates(const std::string& directory);

  SSL_CTX* Context(CertificateKind kind) const {
    return m_contexts[static_cast<std::size_t>(kind)].get();
  }

  // What the https port shows whatever name is asked for; nothing to go by the name.
  void Force(std::optional<CertificateKind> kind);
  std::optional<CertificateKind> Forced() const;

 private:
  struct Free {
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
  };

  std::array<std::unique_ptr<SSL_CTX, Free>, kCertificateKinds> m_contexts;
  mutable std::mutex m_mutex;
  std::optional<CertificateKind> m_forced;
};

}  // namespace velandoc::standin
