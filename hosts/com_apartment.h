// COM for the thread that lives in this scope.
#pragma once

#include "platform/com.h"

namespace velandoc {

/// Single-threaded, as a script engine's thread is. Objects must be released before the end of the
/// scope.
class ComApartment {
 public:
  ComApartment() : m_result(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ~ComApartment() {
    if (SUCCEEDED(m_result)) CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;

 private:
  HRESULT m_result;
};

}  // namespace velandoc
