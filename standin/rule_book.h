// The rules in force, with their counts. Any thread may call.
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "standin/rule.h"

namespace velandoc::standin {

class RuleBook {
 public:
  void Replace(std::vector<Rule> rules);
  void Append(std::vector<Rule> rules);

  // The next rule from `position` on that concerns the request, counted as used; null when there is
  // none. `position` moves behind it. The rules of the book as it is now count, even if it was
  // another one when the search began.
  std::shared_ptr<const Rule> Next(const Request& request, std::size_t& position);

  // True if a rule asks for the operation, which may stand in a request's body.
  bool AsksForOperations() const;

  // The first rule for a connection that has just been accepted, counted as used; null if none.
  std::shared_ptr<const Rule> AtAccept(bool isTls);

 private:
  struct Entry {
    std::shared_ptr<const Rule> rule;
    std::uint64_t seen = 0;

    // Counts one more request; true if the rule concerns it.
    bool Count();
  };

  mutable std::mutex m_mutex;
  std::vector<Entry> m_entries;
};

}  // namespace velandoc::standin
