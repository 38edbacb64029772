#include "base/TaskScope.h"
#include "startup/StartupControl.h"
#include "tests/fakes/ManualScheduler.h"

#include <gtest/gtest.h>
#include <string>

namespace vorli {
namespace {

class NamedControl final : public StartupControl {
 public:
  Task<Outcome> setEnabled(Enablement, std::string) override { co_return Outcome::done; }
  Task<Outcome> remove(std::string) override { co_return Outcome::done; }
  Task<Outcome> undoRemove(std::string) override { co_return Outcome::done; }
  Task<> commitRemoval(std::string) override { co_return; }
};

struct StartupControlTest : testing::Test {
  static StartupItem itemAt(const std::string& path, bool isUserWritable) {
    StartupItem item;
    item.plistURL = path;
    item.isUserWritable = isUserWritable;
    return item;
  }
  Task<> quit() {
    co_await ofUser.quit("/a");
    hasQuit = true;
  }

  NamedControl ofUser, ofHelper, ofEntries, ofUnits;
  StartupControls macOS{ofUser, ofHelper, StartupControls::macOSHelperFolders};
  StartupControls folders{
      ofUser, ofHelper, {}, {{"/home/kim/autostart/", ofEntries}, {"/etc/units/", ofUnits}}};
  bool hasQuit = false;
};

TEST_F(StartupControlTest, withoutFoldersTheItemDecidesWhoMovesIt) {
  EXPECT_EQ(&macOS.forItem(itemAt("/home/kim/Library/LaunchAgents/a.plist", true)), &ofUser);
  EXPECT_EQ(&macOS.forItem(itemAt("/Library/LaunchAgents/a.plist", false)), &ofHelper);
  // The item decides, even at the helper's path.
  EXPECT_EQ(&macOS.forItem(itemAt("/Library/LaunchAgents/a.plist", true)), &ofUser);
}

TEST_F(StartupControlTest, theHelperHandlesRemovedItemsOnlyInTheTwoSystemFolders) {
  EXPECT_EQ(&macOS.forRemoved("/Library/LaunchAgents/a.plist"), &ofHelper);
  EXPECT_EQ(&macOS.forRemoved("/Library/LaunchDaemons/a.plist"), &ofHelper);
  EXPECT_EQ(&macOS.forRemoved("/Users/kim/Library/LaunchAgents/a.plist"), &ofUser);
  EXPECT_EQ(&macOS.forRemoved("/Library/LaunchAgentsOld/a.plist"), &ofUser);
  EXPECT_EQ(&macOS.forRemoved("/Library/LaunchDaemons"), &ofUser);
}

TEST_F(StartupControlTest, aFoldersControlComesBeforeBoth) {
  for (const bool isUserWritable : {false, true}) {
    EXPECT_EQ(&folders.forItem(itemAt("/home/kim/autostart/a.desktop", isUserWritable)), &ofEntries);
    EXPECT_EQ(&folders.forItem(itemAt("/etc/units/a.service", isUserWritable)), &ofUnits);
  }
  EXPECT_EQ(&folders.forRemoved("/home/kim/autostart/a.desktop"), &ofEntries);
  EXPECT_EQ(&folders.forRemoved("/etc/units/a.service"), &ofUnits);
  EXPECT_EQ(&folders.forRemoved("/etc/unitsx/a.service"), &ofUser);
  EXPECT_EQ(&folders.forItem(itemAt("/etc/unitsx/a.service", false)), &ofHelper);
}

TEST_F(StartupControlTest, aControlWithoutServicesQuitsNothing) {
  fakes::ManualScheduler scheduler;
  TaskScope tasks(scheduler);
  tasks.spawn(quit());
  scheduler.runReady();
  EXPECT_TRUE(hasQuit);
}

}  // namespace
}  // namespace vorli
