#include "startup/UnitIdentifier.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

TEST(UnitIdentifierTest, distinguishesTheManagers) {
  EXPECT_EQ(unitIdentifier("mpd.service", UnitManager::user), "mpd.service");
  EXPECT_EQ(unitIdentifier("mpd.service", UnitManager::system), "mpd.service@system");
}

TEST(UnitIdentifierTest, itsSuffixCanBeTakenOff) {
  EXPECT_EQ(withoutUnitSuffix("mpd.service"), "mpd");
  EXPECT_EQ(withoutUnitSuffix("org.acme.sync.timer@system"), "org.acme.sync");
  EXPECT_EQ(withoutUnitSuffix("wg-quick@home.service"), "wg-quick@home");
  EXPECT_EQ(withoutUnitSuffix("org.acme.App"), "org.acme.App");
  EXPECT_EQ(withoutUnitSuffix("someone@system"), "someone@system");
}

}  // namespace
}  // namespace vorli
