#include "standin/certificates.h"

#include <openssl/err.h>

#include <stdexcept>

#include "standin/text.h"

namespace velandoc::standin {
namespace {

constexpr std::array<std::string_view, kCertificateKinds> kNames = {
    "good", "expired", "notyet", "othername", "unknownca", "selfsigned", "allwrong", "clientcert"};

void Require(bool succeeded, const std::string& what) {
  if (succeeded) return;
  const char* reason = ERR_reason_error_string(ERR_peek_last_error());
  throw std::runtime_error(what + ": " + (reason ? reason : "unknown TLS error"));
}

}  // namespace

std::optional<CertificateKind> ParseCertificateKind(std::string_view name) {
  for (std::size_t i = 0; i < kNames.size(); ++i)
    if (kNames[i] == name) return static_cast<CertificateKind>(i);
  return std::nullopt;
}

CertificateKind KindOfHost(std::string_view host) {
  static constexpr std::string_view kDomain = ".example.test";
  const std::string lower = LowerAscii(host);
  if (!lower.ends_with(kDomain)) return CertificateKind::kGood;
  return ParseCertificateKind(lower.substr(0, lower.size() - kDomain.size()))
      .value_or(CertificateKind::kGood);
}

Certificates::Certificates(const std::string& directory) {
  const std::string authority = directory + "/ca.pem";
  for (std::size_t i = 0; i < kCertificateKinds; ++i) {
    const std::string stem = directory + "/" + std::string(kNames[i]);
    auto& context = m_contexts[i];
    context.reset(SSL_CTX_new(TLS_server_method()));
    Require(context != nullptr, "TLS");
    // The leaf alone is sent, so that an unknown authority stays unknown.
    Require(
        SSL_CTX_use_certificate_file(context.get(), (stem + ".pem").c_str(), SSL_FILETYPE_PEM) == 1,
        stem + ".pem");
    Require(
        SSL_CTX_use_PrivateKey_file(context.get(), (stem + ".key").c_str(), SSL_FILETYPE_PEM) == 1,
        stem + ".key");
    Require(SSL_CTX_load_verify_locations(context.get(), authority.c_str(), nullptr) == 1,
            authority);
    // A resumed session shows no certificate, and a forced kind would then go unseen.
    SSL_CTX_set_session_cache_mode(context.get(), SSL_SESS_CACHE_OFF);
    SSL_CTX_set_options(context.get(), SSL_OP_NO_TICKET | SSL_OP_IGNORE_UNEXPECTED_EOF);
    SSL_CTX_set_num_tickets(context.get(), 0);
    SSL_CTX_set_mode(context.get(), SSL_MODE_AUTO_RETRY);
    if (static_cast<CertificateKind>(i) == CertificateKind::kClientCert) {
      SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
      SSL_CTX_set_client_CA_list(context.get(), SSL_load_client_CA_file(authority.c_str()));
    }
  }
}

void Certificates::Force(std::optional<CertificateKind> kind) {
  const std::lock_guard lock(m_mutex);
  m_forced = kind;
}

std::optional<CertificateKind> Certificates::Forced() const {
  const std::lock_guard lock(m_mutex);
  return m_forced;
}

}  // namespace velandoc::standin
