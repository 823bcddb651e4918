#include "tests/unit/platform/windows/winhttp_numbers.h"

#include <gtest/gtest.h>

#include "platform/winhttp_types.h"
#include "platform/wininet_types.h"

namespace velandoc::test {
namespace {

TEST(WinHttpNumbers, AreTheSystems) {
  const NamedNumbers own = {VELANDOC_WINHTTP_NUMBERS(VELANDOC_WINHTTP_ROW)};
  const NamedNumbers system = SystemWinHttpNumbers();
  ASSERT_EQ(own.size(), system.size());
  for (std::size_t i = 0; i < own.size(); ++i) EXPECT_EQ(own[i], system[i]);
}

}  // namespace
}  // namespace velandoc::test
