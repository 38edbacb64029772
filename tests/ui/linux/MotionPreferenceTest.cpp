#include "ui/linux/MotionPreference.h"

#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

TEST(MotionPreference, usersOwnFileCountsWhereTheDesktopPublishesNothing) {
  ManagerSelections nobody;
  ASSERT_FALSE(nobody.isManaged(ManagerSelections::Selection::settings));
  GtkPreference still;
  still.dropsAnimations = true;
  EXPECT_TRUE(MotionPreference(nobody, still).isReduced());
  EXPECT_FALSE(MotionPreference(nobody, {}).isReduced());
}

}  // namespace
}  // namespace vorli::ui
