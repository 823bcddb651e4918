#include "standin/plan.h"

#include <utility>

namespace velandoc::standin {

Plan MakePlan(RuleBook& rules, const Request& request, ConnectionAuth& connection) {
  Plan plan;
  std::size_t position = 0;
  while (const auto rule = rules.Next(request, position)) {
    const RuleActions& actions = rule->actions;
    if (actions.auth) {
      std::string user;
      plan.response = CheckCredentials(request, *actions.auth, connection, user);
      if (plan.response) return plan;
      if (!actions.auth->isProxy) plan.user = std::move(user);
    }
    plan.delay += actions.delay;
    plan.interimStatuses.insert(plan.interimStatuses.end(), actions.interimStatuses.begin(),
                                actions.interimStatuses.end());
    if (actions.drip) plan.drip = actions.drip;
    if (actions.cut) plan.cut = actions.cut;
    if (actions.IsFinal()) {
      plan.response = actions.response;
      plan.raw = actions.raw;
      plan.hang = actions.hang;
      plan.isEarly = actions.isEarly;
      return plan;
    }
  }
  return plan;
}

}  // namespace velandoc::standin
