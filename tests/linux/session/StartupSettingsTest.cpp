#include "linux/session/StartupSettings.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli::linuxhost {
namespace {

using Commands = std::vector<std::vector<std::string>>;

TEST(StartupSettingsTest, eachDesktopHasItsPage) {
  EXPECT_EQ(startupPages({"XFCE"}), (Commands{{"xfce4-session-settings"}}));
  EXPECT_EQ(startupPages({"KDE"}),
            (Commands{{"systemsettings", "kcm_autostart"}, {"systemsettings5", "kcm_autostart"}}));
  EXPECT_EQ(startupPages({"ubuntu", "MATE"}), (Commands{{"mate-session-properties"}}));
  EXPECT_TRUE(startupPages({"unknown"}).empty());
  EXPECT_TRUE(startupPages({}).empty());
}

}  // namespace
}  // namespace vorli::linuxhost
