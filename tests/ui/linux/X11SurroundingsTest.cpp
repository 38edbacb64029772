#include "ui/linux/X11Surroundings.h"

#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

TEST(X11Surroundings, closeButtonIsWhereTheDesktopsLayoutHasIt) {
  EXPECT_EQ(closeButtonSideOf("menu:minimize,maximize,close"), CloseButtonSide::right);
  EXPECT_EQ(closeButtonSideOf("close,minimize,maximize:menu"), CloseButtonSide::left);
  EXPECT_EQ(closeButtonSideOf("close"), CloseButtonSide::left);
  EXPECT_EQ(closeButtonSideOf(":"), CloseButtonSide::right);
  EXPECT_EQ(closeButtonSideOf(""), CloseButtonSide::right);
}

}  // namespace
}  // namespace vorli::ui
