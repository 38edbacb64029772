#include "helper/LaunchAtLoginManager.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/LoginItem.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli {
namespace {

using Strings = std::vector<std::string>;

struct LaunchAtLoginManagerTest : testing::Test {
  fakes::CapturedLog log;
  fakes::KeyValueStore store;
  AppSettings settings{store};
  fakes::LoginItem item;
  LaunchAtLoginManager manager{settings, item};
};

TEST_F(LaunchAtLoginManagerTest, leavesAnItemThatAgreesAlone) {
  for (const int status : {0, 2, 3}) {
    item.rawStatus = status;
    manager.syncFromSettings();
  }
  settings.launchAtLogin.set(true);
  item.rawStatus = 1;
  manager.syncFromSettings();
  EXPECT_EQ(item.calls, Strings{});
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(LaunchAtLoginManagerTest, restoresAnItemThatTheUserRemovedElsewhere) {
  settings.launchAtLogin.set(true);
  manager.syncFromSettings();
  EXPECT_EQ(item.calls, Strings{"register"});
  EXPECT_EQ(log.messages(), Strings{"syncing login item: setting=true system=false"});
}

TEST_F(LaunchAtLoginManagerTest, registersAgainAtEachLaunchWhileApprovalIsAwaited) {
  settings.launchAtLogin.set(true);
  item.rawStatus = 2;
  manager.syncFromSettings();
  manager.syncFromSettings();
  EXPECT_EQ(item.calls, (Strings{"register", "register"}));
  EXPECT_EQ(log.count("syncing login item: setting=true system=false"), 2);
}

TEST_F(LaunchAtLoginManagerTest, removesAnItemThatTheSettingDoesNotWant) {
  item.rawStatus = 1;
  manager.syncFromSettings();
  EXPECT_EQ(item.calls, Strings{"unregister"});
  EXPECT_EQ(log.messages(), Strings{"syncing login item: setting=false system=true"});
}

TEST_F(LaunchAtLoginManagerTest, theSettingWinsAndIsNeverWrittenBack) {
  settings.launchAtLogin.set(true);
  item.rawStatus = 0;  // the user removed the item elsewhere
  item.result = std::unexpected("the folder is read-only");
  manager.syncFromSettings();
  EXPECT_TRUE(settings.launchAtLogin());
  settings.launchAtLogin.set(false);
  item.rawStatus = 1;  // the user added one elsewhere
  manager.syncFromSettings();
  EXPECT_FALSE(settings.launchAtLogin());
  EXPECT_EQ(item.calls, (Strings{"register", "unregister"}));
}

TEST_F(LaunchAtLoginManagerTest, aFailureIsLoggedAndTheSettingStays) {
  settings.launchAtLogin.set(true);
  item.result = std::unexpected("the folder is read-only");
  manager.apply(LoginItemWish::on);
  manager.apply(LoginItemWish::off);
  EXPECT_EQ(item.calls, (Strings{"register", "unregister"}));
  EXPECT_EQ(log.count("login item update failed: the folder is read-only"), 2);
  EXPECT_EQ(log.lines().front().level, LogLevel::error);
  EXPECT_EQ(log.lines().front().category, "loginitem");
  EXPECT_TRUE(settings.launchAtLogin());
}

}  // namespace
}  // namespace vorli
