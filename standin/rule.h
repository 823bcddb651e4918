// A rule: which requests it concerns, how often, and what the server does then.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "standin/answer_stream.h"
#include "standin/authentication.h"
#include "standin/request.h"
#include "standin/response.h"

namespace velandoc::standin {

// Bytes that are sent as they are.
struct RawAnswer {
  std::string bytes;
  // The connection ends behind them.
  bool close = true;
};

struct RuleMatch {
  // Whole and in any case; without a port.
  std::optional<std::string> host;
  // Start of path and query, as sent.
  std::optional<std::string> path;
  std::optional<std::string> method;
  std::optional<bool> tls;
  // Stands somewhere in the head.
  std::optional<std::string> headContains;
  // Whole, in the same case; see Request::operation.
  std::optional<std::string> operation;
  // Whole, in the same case; see Request::role.
  std::optional<std::string> role;

  bool Fits(const Request& request) const;
};

struct RuleActions {
  // Before the answer; the next rule that fits, or else the application, gives the answer itself.
  std::optional<AuthDemand> auth;
  std::chrono::milliseconds delay{0};
  std::vector<int> interimStatuses;
  std::optional<Drip> drip;
  // Final for At::kRequest and At::kAccept.
  std::optional<Cut> cut;

  // One of these ends the search for rules.
  std::optional<Response> response;
  std::optional<RawAnswer> raw;
  // Silence, then the end of the connection.
  std::optional<std::chrono::milliseconds> hang;

  // The answer is sent once the head is read, and the connection ended.
  bool isEarly = false;

  bool ConcernsAccept() const { return cut && cut->at == Cut::At::kAccept; }
  bool IsFinal() const;
};

struct Rule {
  RuleMatch match;
  // That many requests pass by first.
  std::uint64_t skip = 0;
  // Then that many are concerned; nothing for all of them.
  std::optional<std::uint64_t> times;
  RuleActions actions;
};

// The rules of a JSON array, or the one of a JSON object. Throws std::exception with a message that
// names the mistake; a key that no rule has is a mistake too, since a typing error would otherwise
// turn a test into one that tests nothing.
std::vector<Rule> ParseRules(std::string_view json);

}  // namespace velandoc::standin
