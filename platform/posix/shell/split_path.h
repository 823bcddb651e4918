// The C library's _wsplitpath_s of the other home.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// The parts of a path; put together they are the path.
struct PathParts {
  WideView drive;
  WideView folder;
  WideView name;
  WideView extension;
};

/// Any character and a colon at the beginning are a drive. Only the last dot behind the last
/// separator begins an extension, so that of ".profile" is the whole and ".." is "." and ".".
PathParts SplitPath(WideView path);

}  // namespace velandoc
