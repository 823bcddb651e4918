// The calling thread's error object, for tests that make one or look at one.
#pragma once

#include <string>

#include "platform/owners.h"

namespace velandoc::testing {

/// An error object with this description and nothing else.
ComPtr<IErrorInfo> MakeErrorInfo(LPCOLESTR description);

struct ThreadError {
  bool isThere = false;
  GUID guid{};
  std::string source;
  std::string description;
};

/// Takes the error object off the thread and reads it.
ThreadError TakeThreadError();

}  // namespace velandoc::testing
