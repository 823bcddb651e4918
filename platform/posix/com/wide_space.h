// What counts as white space in a text that is read as a number or a date.
#pragma once

#include "platform/com.h"

namespace velandoc {

/// White space as Unicode has it, no-break spaces included; not U+200B, which has no width.
constexpr bool IsWideSpace(OLECHAR unit) {
  if (unit < 0x80) return unit == ' ' || (unit >= '\t' && unit <= '\r');
  return unit == 0x85 || unit == 0xA0 || unit == 0x1680 || (unit >= 0x2000 && unit <= 0x200A) ||
         unit == 0x2028 || unit == 0x2029 || unit == 0x202F || unit == 0x205F || unit == 0x3000;
}

}  // namespace velandoc
