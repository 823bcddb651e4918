#include "standin/rule_book.h"

#include <algorithm>

namespace velandoc::standin {

bool RuleBook::Entry::Count() {
  const std::uint64_t index = seen++;
  if (index < rule->skip) return false;
  return !rule->times || index - rule->skip < *rule->times;
}

void RuleBook::Replace(std::vector<Rule> rules) {
  {
    const std::lock_guard lock(m_mutex);
    m_entries.clear();
  }
  Append(std::move(rules));
}

void RuleBook::Append(std::vector<Rule> rules) {
  const std::lock_guard lock(m_mutex);
  for (Rule& rule : rules) m_entries.push_back({std::make_shared<const Rule>(std::move(rule)), 0});
}

std::shared_ptr<const Rule> RuleBook::Next(const Request& request, std::size_t& position) {
  const std::lock_guard lock(m_mutex);
  while (position < m_entries.size()) {
    Entry& entry = m_entries[position++];
    const RuleActions& actions = entry.rule->actions;
    if (actions.ConcernsAccept() || !entry.rule->match.Fits(request)) continue;
    // A demand of the proxy concerns what is asked of the proxy: not a request inside a tunnel,
    // which it cannot see, nor one that came straight here.
    const bool isForProxy = actions.auth && actions.auth->isProxy;
    if (isForProxy && (!request.proxy || !request.connectHost.empty())) continue;
    // Rules are written for what goes through a tunnel; its opening is meant only when named.
    if (request.method == "CONNECT" && !isForProxy && !entry.rule->match.method) continue;
    if (entry.Count()) return entry.rule;
  }
  return nullptr;
}

bool RuleBook::AsksForOperations() const {
  const std::lock_guard lock(m_mutex);
  return std::any_of(m_entries.begin(), m_entries.end(),
                     [](const Entry& entry) { return entry.rule->match.operation.has_value(); });
}

std::shared_ptr<const Rule> RuleBook::AtAccept(bool isTls) {
  const std::lock_guard lock(m_mutex);
  for (Entry& entry : m_entries) {
    const auto& tls = entry.rule->match.tls;
    if (!entry.rule->actions.ConcernsAccept() || (tls && *tls != isTls)) continue;
    if (entry.Count()) return entry.rule;
  }
  return nullptr;
}

}  // namespace velandoc::standin
