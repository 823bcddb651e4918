// TLS over an accepted socket.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "standin/certificates.h"
#include "standin/channel.h"

namespace velandoc::standin {

// Any thread may call Accept. The certificates must outlive this object and its channels.
class TlsAcceptor {
 public:
  explicit TlsAcceptor(const Certificates& certificates);

  // Shakes hands on `socket`. The certificate is that of the kind `forced`; without it that of the
  // name which the client indicates; if it names none, that of `fallbackHost`. Null when the client
  // turns the handshake down.
  std::unique_ptr<Channel> Accept(int socket, std::optional<CertificateKind> forced,
                                  const std::string& fallbackHost) const;

 private:
  const Certificates& m_certificates;
};

}  // namespace velandoc::standin
