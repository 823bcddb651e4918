#include "hdfs/octal_permissions.h"

#include <gtest/gtest.h>

namespace velandoc {
namespace {

TEST(OctalPermissions, ThreeDigitsFromZeroToSeven) {
  EXPECT_TRUE(IsValidOctalPermissions(OLESTR("755")));
  EXPECT_TRUE(IsValidOctalPermissions(OLESTR("000")));
  EXPECT_TRUE(IsValidOctalPermissions(OLESTR("777")));
}

TEST(OctalPermissions, NothingElse) {
  for (const LPCWSTR text : {OLESTR(""), OLESTR("75"), OLESTR("7555"), OLESTR("758"), OLESTR("rwx"),
                             OLESTR("-75"), OLESTR(" 75"), OLESTR("75 "), OLESTR("75\uff17")}) {
    EXPECT_FALSE(IsValidOctalPermissions(text));
  }
}

}  // namespace
}  // namespace velandoc
