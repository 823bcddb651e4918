// What the control port offers: rules, the log, the site, HDFS, counts, certificates, the end.
#pragma once

#include "standin/application.h"
#include "standin/services.h"

namespace velandoc::standin {

class ControlPages final : public Application {
 public:
  // Borrows the services, which hold this page in turn.
  explicit ControlPages(Services& services) : m_services(services) {}

  bool Serves(const Request&) const override { return true; }
  Response Answer(const Request& request) override;

 private:
  Response Behaviour(const Request& request);
  Response Log(const Request& request);
  Response SiteState(const Request& request);
  Response Hdfs(const Request& request);
  Response SetCaller(const Request& request);
  Response SetClock(const Request& request);
  Response Stats() const;
  Response SetCertificate(const Request& request);
  Response SetRecording(const Request& request);

  Services& m_services;
};

}  // namespace velandoc::standin
