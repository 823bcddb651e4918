// Sets an environment variable until the end of the scope. For tests of the Linux home; not while
// other threads read the environment.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace velandoc::test {

class EnvironmentScope {
 public:
  /// A null `value` takes the variable out.
  EnvironmentScope(const char* name, const char* value) : m_name(name) {
    if (const char* old = std::getenv(name)) m_old = old;
    Put(value);
  }
  ~EnvironmentScope() { Put(m_old ? m_old->c_str() : nullptr); }
  EnvironmentScope(const EnvironmentScope&) = delete;
  EnvironmentScope& operator=(const EnvironmentScope&) = delete;

 private:
  void Put(const char* value) {
    if (value != nullptr) {
      setenv(m_name, value, 1);
    } else {
      unsetenv(m_name);
    }
  }

  const char* m_name;
  std::optional<std::string> m_old;
};

}  // namespace velandoc::test
