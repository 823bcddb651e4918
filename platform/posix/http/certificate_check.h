// The server's certificate: every problem found, told apart, and passed or refused one by one.
#pragma once

#include <curl/curl.h>

#include <memory>
#include <string>

#include "platform/posix/wininet_types.h"

namespace velandoc::http {

/// The SECURITY_FLAG_IGNORE bits that let a certificate problem pass.
inline constexpr DWORD kCertificateIgnoreFlags =
    SECURITY_FLAG_IGNORE_UNKNOWN_CA | SECURITY_FLAG_IGNORE_CERT_CN_INVALID |
    SECURITY_FLAG_IGNORE_CERT_DATE_INVALID | SECURITY_FLAG_IGNORE_WRONG_USAGE;

/// What a person needs to decide about a certificate. Plain text, one line each; control characters
/// are taken out.
struct CertificateFacts {
  std::string subject;
  std::string issuer;
  std::string validFrom;
  std::string validUntil;
  std::string sha256;  // "AB:CD:..."
};

/// One handshake's rules and findings. Shared with the TLS context that it guards, which may
/// outlive the request.
struct CertificateCheck {
  std::string host;       // the name or address that the certificate must carry
  DWORD ignoreFlags = 0;  // what passes
  bool hasDateProblem = false;
  bool hasNameProblem = false;
  bool hasUnknownAuthority = false;
  bool hasWrongUsage = false;
  bool hasOtherProblem = false;  // bad signature, weak key, revoked...: never passes
  bool clientCertificateWanted = false;
  CertificateFacts facts;

  /// The first problem that `ignoreFlags` does not pass: other problems before the three that can
  /// be passed, these in the order date, name, authority. ERROR_SUCCESS if there is none.
  DWORD FirstProblem() const;
};

/// Sets up `easy` so that its handshakes are judged by `check`.
void InstallCertificateCheck(CURL* easy, const std::shared_ptr<CertificateCheck>& check);

}  // namespace velandoc::http
