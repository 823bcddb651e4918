// What the registry says of the component's classes.
#pragma once

#include <string>
#include <vector>

#include "platform/com.h"

namespace velandoc {

/// One class in one place.
struct ClassRegistration {
  bool forUser = false;  // else for all users
  std::string library;   // as registered, UTF-8
  bool libraryExists = false;
};

struct RegisteredClass {
  std::string progId;  // without a version
  std::string classId;
  /// The user's first: that is the one which counts.
  std::vector<ClassRegistration> registrations;
};

/// The classes in the order of their ProgIDs. 0; or the registry's error, with `classes` empty and
/// `brokenForUser` telling in which of its two places it met it.
LONG FindRegisteredClasses(std::vector<RegisteredClass>& classes, bool& brokenForUser);

}  // namespace velandoc
