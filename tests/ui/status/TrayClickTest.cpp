#include "ui/status/TrayClick.h"

#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

using ports::StatusClick;

TEST(TrayClick, leftAndRightAreClicksWithAndWithoutControl) {
  const auto left = trayClick(Qt::LeftButton, Qt::NoModifier);
  ASSERT_TRUE(left);
  EXPECT_EQ(left->button, StatusClick::Button::left);
  EXPECT_EQ(left->control, StatusClick::Control::up);
  const auto right = trayClick(Qt::RightButton, Qt::ShiftModifier);
  ASSERT_TRUE(right);
  EXPECT_EQ(right->button, StatusClick::Button::right);
  EXPECT_EQ(right->control, StatusClick::Control::up);
  const auto withControl = trayClick(Qt::LeftButton, Qt::ControlModifier | Qt::ShiftModifier);
  ASSERT_TRUE(withControl);
  EXPECT_EQ(withControl->control, StatusClick::Control::held);
}

TEST(TrayClick, otherButtonsAreIgnored) {
  for (const auto button :
       {Qt::MiddleButton, Qt::BackButton, Qt::ForwardButton, Qt::TaskButton, Qt::NoButton}) {
    EXPECT_FALSE(trayClick(button, Qt::NoModifier)) << button;
  }
}

}  // namespace
}  // namespace vorli::ui
