// The one site that all connections see.
#pragma once

#include <mutex>
#include <utility>

#include "standin/site.h"

namespace velandoc::standin {

// Any thread may call.
class SiteStore {
 public:
  // `start` is also what Reset brings back.
  explicit SiteStore(Site start) : m_start(std::move(start)), m_site(m_start) {}

  // What `use` returns. Nobody else reads or changes the site meanwhile; no pointer into the site
  // may outlive `use`.
  template <typename Use>
  auto With(const Use& use) {
    const std::lock_guard lock(m_mutex);
    return use(m_site);
  }

  void Replace(Site site) {
    const std::lock_guard lock(m_mutex);
    m_site = std::move(site);
  }
  void Reset() { Replace(m_start); }

 private:
  const Site m_start;
  std::mutex m_mutex;
  Site m_site;
};

}  // namespace velandoc::standin
