// The table that the build makes of resources/velandoc.rc for the Linux home.
#pragma once

#include <span>
#include <string_view>

#include "platform/com.h"

namespace velandoc {

struct EmbeddedResource {
  std::u16string_view type;
  WORD id;
  std::string_view bytes;
};

struct EmbeddedString {
  WORD id;
  std::u16string_view text;
};

/// Both in the resource script's order.
std::span<const EmbeddedResource> EmbeddedResources();
std::span<const EmbeddedString> EmbeddedStrings();

}  // namespace velandoc
