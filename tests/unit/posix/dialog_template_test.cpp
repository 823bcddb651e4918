// The templates of the home whose loader knows none.
#include "platform/posix/dialog_template.h"

#include <gtest/gtest.h>

#include "platform/text.h"

namespace velandoc {
namespace {

TEST(DialogTemplates, TheOneForTheFieldsIsAsOnWindows) {
  const DialogTemplate* found = FindDialogTemplate(201);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(WideView(found->caption), u"Edit SharePoint Fields");
  EXPECT_EQ(found->width, 399);
  EXPECT_EQ(found->height, 218);
  ASSERT_EQ(found->buttons.size(), 2U);
  const DialogButton& ok = found->buttons[0];
  EXPECT_EQ(WideView(ok.text), u"OK");
  EXPECT_EQ(std::vector({ok.id, ok.x, ok.y, ok.width, ok.height}),
            std::vector({1, 289, 197, 50, 14}));
  EXPECT_TRUE(ok.isDefault);
  const DialogButton& cancel = found->buttons[1];
  EXPECT_EQ(WideView(cancel.text), u"Cancel");
  EXPECT_EQ(std::vector({cancel.id, cancel.x, cancel.y, cancel.width, cancel.height}),
            std::vector({2, 342, 197, 50, 14}));
  EXPECT_FALSE(cancel.isDefault);
  EXPECT_EQ(FindDialogTemplate(104), nullptr);
}

TEST(DialogTemplates, DialogUnitsAreRoundedToTheNearestPixel) {
  EXPECT_EQ(DialogPixelsX(399), 599);  // 598.5
  EXPECT_EQ(DialogPixelsY(218), 354);  // 354.25
  EXPECT_EQ(DialogPixelsX(0), 0);
  EXPECT_EQ(DialogPixelsX(50), 75);
  EXPECT_EQ(DialogPixelsY(14), 23);  // 22.75
}

}  // namespace
}  // namespace velandoc
