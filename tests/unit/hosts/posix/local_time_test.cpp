// The zone from TZ, which Windows does not have in this form.

#include <gtest/gtest.h>

#include "hosts/command/moment.h"
#include "tests/support/posix/environment_scope.h"

namespace velandoc {
namespace {

std::string LocalOf(const char* zone, LPCWSTR time) {
  const test::EnvironmentScope scope("TZ", zone);
  return LocalText(ReadServerTime(time).value_or(0));
}

TEST(LocalTime, FollowsTheZoneOfThatDay) {
  EXPECT_EQ(LocalOf("CET-1CEST,M3.5.0,M10.5.0/3", OLESTR("15 Jan 2026 12:00:00")),
            "2026-01-15 13:00:00 +0100");
  EXPECT_EQ(LocalOf("CET-1CEST,M3.5.0,M10.5.0/3", OLESTR("15 Jul 2026 12:00:00")),
            "2026-07-15 14:00:00 +0200");
  EXPECT_EQ(LocalOf("NST3:30", OLESTR("15 Jan 2026 01:00:00")), "2026-01-14 21:30:00 -0330");
  EXPECT_EQ(LocalOf("UTC0", OLESTR("15 Jan 2026 12:00:00")), "2026-01-15 12:00:00 +0000");
}

}  // namespace
}  // namespace velandoc
