// Comparing names without regard to case.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// The small letter of a capital of ASCII, Latin-1, Greek and Cyrillic; every other unit is itself.
/// Independent of the process's locale: a name must mean the same key to every program.
constexpr OLECHAR FoldCase(OLECHAR unit) {
  const auto plus = [unit](int offset) { return static_cast<OLECHAR>(unit + offset); };
  if (unit < 0x80) return unit >= 'A' && unit <= 'Z' ? plus(32) : unit;
  if (unit >= 0xC0 && unit <= 0xDE && unit != 0xD7) return plus(32);
  if (unit >= 0x391 && unit <= 0x3A9 && unit != 0x3A2) return plus(32);
  if (unit >= 0x410 && unit <= 0x42F) return plus(32);
  if (unit >= 0x400 && unit <= 0x40F) return plus(80);
  return unit;
}

inline WideString FoldCase(WideView text) {
  WideString folded(text);
  for (OLECHAR& unit : folded) unit = FoldCase(unit);
  return folded;
}

inline bool EqualsIgnoringCase(WideView a, WideView b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (FoldCase(a[i]) != FoldCase(b[i])) return false;
  }
  return true;
}

}  // namespace velandoc
