// What the rules make of one request, all of them taken together.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "standin/authentication.h"
#include "standin/rule_book.h"

namespace velandoc::standin {

struct Plan {
  std::chrono::milliseconds delay{0};
  std::vector<int> interimStatuses;
  std::optional<Drip> drip;
  std::optional<Cut> cut;
  std::optional<std::chrono::milliseconds> hang;
  std::optional<RawAnswer> raw;
  // Nothing of this and of the two above: the application answers.
  std::optional<Response> response;
  bool isEarly = false;
  // Whose credentials were right; empty where none were demanded.
  std::string user;
};

// Goes through the rules in order up to the first that says the answer, credentials that are wrong
// included.
Plan MakePlan(RuleBook& rules, const Request& request, ConnectionAuth& connection);

}  // namespace velandoc::standin
