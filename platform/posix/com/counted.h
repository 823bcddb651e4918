// The reference count of an object that ends with its last reference.
#pragma once

#include <utility>

#include "platform/posix/com/com.h"

namespace velandoc {

/// Begins with one reference, which is its maker's. `Count` is std::atomic<ULONG> for an object
/// that any thread may hold, ULONG for one of a single thread. `Bases` are the interfaces, or
/// classes that implement more of them.
template <class Count, class... Bases>
class Counted : public Bases... {
 public:
  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

 protected:
  template <class... Arguments>
  explicit Counted(Arguments&&... arguments) : Bases(std::forward<Arguments>(arguments)...)... {}
  virtual ~Counted() = default;

 private:
  Count m_references{1};
};

}  // namespace velandoc
