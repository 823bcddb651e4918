#include "standin/tls_channel.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <algorithm>
#include <climits>

namespace velandoc::standin {
namespace {

struct FreeSsl {
  void operator()(SSL* ssl) const { SSL_free(ssl); }
};

// What the name callback needs while the handshake runs.
struct Choice {
  const Certificates& certificates;
  bool isForced;
};

// SSL_set_SSL_CTX takes over the certificate only; whom to ask for one has to be said again.
void Use(SSL* ssl, SSL_CTX* context) {
  SSL_set_SSL_CTX(ssl, context);
  SSL_set_verify(ssl, SSL_CTX_get_verify_mode(context), nullptr);
}

int ChooseByName(SSL* ssl, int*, void*) {
  const auto* choice = static_cast<const Choice*>(SSL_get_app_data(ssl));
  const char* name = SSL_get_servername(ssl, TLSEXT_NAMETYPE_host_name);
  if (name && !choice->isForced) Use(ssl, choice->certificates.Context(KindOfHost(name)));
  return SSL_TLSEXT_ERR_OK;
}

class TlsChannel final : public Channel {
 public:
  explicit TlsChannel(std::unique_ptr<SSL, FreeSsl> ssl) : m_ssl(std::move(ssl)) {}

  std::size_t Read(char* buffer, std::size_t size) override {
    const int most = static_cast<int>(std::min<std::size_t>(size, INT_MAX));
    ERR_clear_error();
    const int got = SSL_read(m_ssl.get(), buffer, most);
    return got > 0 ? static_cast<std::size_t>(got) : 0;
  }

  std::size_t Discard(std::size_t size) override {
    if (!m_scratch) m_scratch = std::make_unique_for_overwrite<char[]>(kScratch);
    return Read(m_scratch.get(), std::min(size, kScratch));
  }

  bool Write(std::span<const std::string_view> pieces) override {
    std::size_t total = 0;
    for (const std::string_view piece : pieces) total += piece.size();
    if (total <= kJoined) {
      // One record for a small answer.
      std::string joined;
      joined.reserve(total);
      for (const std::string_view piece : pieces) joined += piece;
      return WriteOne(joined);
    }
    return std::all_of(pieces.begin(), pieces.end(),
                       [this](std::string_view piece) { return WriteOne(piece); });
  }

  void EndWriting() override {
    ERR_clear_error();
    SSL_shutdown(m_ssl.get());
    shutdown(SSL_get_fd(m_ssl.get()), SHUT_WR);
  }

 private:
  static constexpr std::size_t kScratch = 64 * 1024;
  static constexpr std::size_t kJoined = 16 * 1024;

  bool WriteOne(std::string_view piece) {
    while (!piece.empty()) {
      const int most = static_cast<int>(std::min<std::size_t>(piece.size(), 1 << 30));
      ERR_clear_error();
      const int sent = SSL_write(m_ssl.get(), piece.data(), most);
      if (sent <= 0) return false;
      piece.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
  }

  std::unique_ptr<SSL, FreeSsl> m_ssl;
  std::unique_ptr<char[]> m_scratch;
};

}  // namespace

TlsAcceptor::TlsAcceptor(const Certificates& certificates) : m_certificates(certificates) {
  for (std::size_t i = 0; i < kCertificateKinds; ++i) {
    SSL_CTX_set_tlsext_servername_callback(certificates.Context(static_cast<CertificateKind>(i)),
                                           ChooseByName);
  }
}

std::unique_ptr<Channel> TlsAcceptor::Accept(int socket, std::optional<CertificateKind> forced,
                                             const std::string& fallbackHost) const {
  Choice choice{m_certificates, forced.has_value()};
  // The callback is promised for a client that names a host only, so the choice for the others
  // stands from the start.
  const CertificateKind kind = forced.value_or(KindOfHost(fallbackHost));
  std::unique_ptr<SSL, FreeSsl> ssl(SSL_new(m_certificates.Context(kind)));
  if (!ssl || SSL_set_fd(ssl.get(), socket) != 1) return nullptr;
  SSL_set_app_data(ssl.get(), &choice);
  ERR_clear_error();
  if (SSL_accept(ssl.get()) != 1) return nullptr;
  SSL_set_app_data(ssl.get(), nullptr);
  return std::make_unique<TlsChannel>(std::move(ssl));
}

}  // namespace velandoc::standin
