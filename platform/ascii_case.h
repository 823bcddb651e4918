// Schemes, words of scripts and command lines compare without regard to case, and only in ASCII: no
// locale makes two different ones equal.
#pragma once

#include <algorithm>

#include "platform/text.h"

namespace velandoc {

constexpr OLECHAR ToAsciiLower(OLECHAR unit) {
  return unit >= 'A' && unit <= 'Z' ? static_cast<OLECHAR>(unit + ('a' - 'A')) : unit;
}

constexpr bool EqualsIgnoringAsciiCase(WideView a, WideView b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](OLECHAR x, OLECHAR y) { return ToAsciiLower(x) == ToAsciiLower(y); });
}

}  // namespace velandoc
