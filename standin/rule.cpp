#include "standin/rule.h"

#include "standin/text.h"

namespace velandoc::standin {

bool RuleMatch::Fits(const Request& request) const {
  if (host && !EqualNoCase(*host, request.host)) return false;
  if (path && !request.pathAndQuery.starts_with(*path)) return false;
  if (method && *method != request.method) return false;
  if (tls && *tls != request.tls) return false;
  if (operation && *operation != request.operation) return false;
  if (role && *role != request.role) return false;
  return !headContains || request.head.find(*headContains) != std::string::npos;
}

bool RuleActions::IsFinal() const {
  return response || raw || hang || (cut && cut->at == Cut::At::kRequest);
}

}  // namespace velandoc::standin
