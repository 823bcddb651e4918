// How the core reaches the system: one abstract class (a port) for each service, and one instance
// of it that serves now. Tests replace the instance for a scope; this is the only test seam.
#pragma once

namespace velandoc {

/// The real service of this home. Each port's translation unit in windows/ or posix/ specialises
/// it.
template <class Port>
Port& SystemPort();

template <class Port>
Port*& ReplacedPort() {
  static Port* replaced = nullptr;
  return replaced;
}

/// The instance that serves now: the system's, unless a PortScope stands.
template <class Port>
Port& CurrentPort() {
  Port* replaced = ReplacedPort<Port>();
  return replaced ? *replaced : SystemPort<Port>();
}

/// Puts `replacement` in the port's place until the end of the scope. Scopes nest; the replacement
/// must outlive its scope. Not for use while another thread calls the port.
template <class Port>
class PortScope {
 public:
  explicit PortScope(Port& replacement) : m_previous(ReplacedPort<Port>()) {
    ReplacedPort<Port>() = &replacement;
  }
  ~PortScope() { ReplacedPort<Port>() = m_previous; }
  PortScope(const PortScope&) = delete;
  PortScope& operator=(const PortScope&) = delete;

 private:
  Port* m_previous;
};

}  // namespace velandoc
