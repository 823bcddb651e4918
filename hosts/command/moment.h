// Points in time, as the component and the servers give them and as they are shown.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/text.h"

namespace velandoc {

/// A FILETIME in one number: units of 100 ns since the beginning of 1601, UTC.
using Moment = std::int64_t;

/// Reads a time in the words of a FrontPage server, "20 Nov 2026 09:15:30 -0000" (with "Fri, " in
/// front, too), or of a list row, "2026-11-20T09:15:30Z" (with a blank in place of the T, and
/// without the Z, too), be it behind type letters and a "|" or not. A zone is what the time is
/// ahead of UTC; without one it is UTC. Nothing for any other text and for a day that no calendar
/// has.
std::optional<Moment> ReadServerTime(WideView text);

/// "2026-11-20 09:15:30 UTC"; parts of a second are left out.
std::string UtcText(Moment moment);
/// "2026-11-20T09:15:30Z".
std::string IsoText(Moment moment);
/// "2026-11-20 10:15:30 +0100", by the system's zone; the same as UtcText if the system has no
/// local time for it.
std::string LocalText(Moment moment);
/// "2026-11-20T10:15:30+01:00"; IsoText if the system has no local time for it.
std::string IsoLocalText(Moment moment);

}  // namespace velandoc
