#include "startup/ItemClassifier.h"
#include "tests/fakes/InstalledApplications.h"
#include "tests/fakes/StartupFiles.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

using Footprint = StartupItem::Footprint;
using Timing = StartupItem::Timing;

struct ItemClassifierTest : testing::Test {
  fakes::StartupFiles files;
  fakes::InstalledApplications applications;
  RawCandidate candidate{.identifier = "com.acme.agent"};
  ScanSurroundings surroundings;

  StartupItem item() { return ItemClassifier(files, applications).classify(candidate, surroundings); }
  void installAcme() {
    applications.install("/Applications/Acme.app", "com.acme", "Acme");
    files.add("/Applications/Acme.app/Contents/Info.plist");
  }
};

TEST_F(ItemClassifierTest, footprintGrowsAtItsThresholds) {
  const std::tuple<double, double, Footprint> rows[] = {
      {0.0, 0.0, Footprint::light},    {0.99, 149.9, Footprint::light},  {1.0, 0.0, Footprint::medium},
      {0.0, 150.0, Footprint::medium}, {4.99, 399.9, Footprint::medium}, {5.0, 0.0, Footprint::heavy},
      {0.0, 400.0, Footprint::heavy},
  };
  for (const auto& [cpu, memory, expected] : rows) EXPECT_EQ(footprintOf(true, true, cpu, memory), expected);
  EXPECT_EQ(footprintOf(false, true, 50.0, 5000.0), Footprint::light);
  EXPECT_EQ(footprintOf(true, false, 50.0, 5000.0), Footprint::light);
}

TEST_F(ItemClassifierTest, anUnknownItemIsNamedAfterItsIdentifier) {
  const auto made = item();
  EXPECT_EQ(made.id, "com.acme.agent");
  EXPECT_EQ(made.bundleID, "com.acme.agent");
  EXPECT_EQ(made.displayName, "Acme Agent");
  EXPECT_EQ(made.description, "Runs quietly in the background.");
  EXPECT_EQ(made.appURL, std::nullopt);
  EXPECT_EQ(made.installerName, "Acme");
  EXPECT_FALSE(made.isRunning);
  EXPECT_EQ(made.timing, Timing::onDemand);
}

TEST_F(ItemClassifierTest, aNameIsTakenFromTheApplicationThenTheHint) {
  candidate.displayNameHint = "Hinted";
  EXPECT_EQ(item().displayName, "Hinted");
  installAcme();
  EXPECT_EQ(item().displayName, "Acme");
  EXPECT_EQ(item().bundleID, "com.acme");
  EXPECT_EQ(item().appURL, "/Applications/Acme.app");
}

TEST_F(ItemClassifierTest, theCatalogHasTheLastWord) {
  candidate.identifier = "label.of.any.kind";
  candidate.programPath = "/Applications/1Password.app/Contents/MacOS/agent";
  applications.install("/Applications/1Password.app", "com.1password.1password", "One");
  const auto made = item();
  EXPECT_EQ(made.displayName, "1Password");
  EXPECT_EQ(made.description, "Stays ready to fill in passwords when you need them.");
  EXPECT_TRUE(made.requiresConfirmation);
}

TEST_F(ItemClassifierTest, statsOfTheApplicationComeBeforeThoseOfTheIdentifier) {
  installAcme();
  surroundings.stats["com.acme.agent"] = {7.0, 70.0, true};
  EXPECT_EQ(item().cpuPercent, 7.0);
  surroundings.stats["com.acme"] = {0.0, 0.0, false};  // an entry of zeros is an entry
  EXPECT_EQ(item().cpuPercent, 0.0);
  EXPECT_FALSE(item().isRunning);
}

TEST_F(ItemClassifierTest, aPausedItemThatRunsShowsItsNumbersAndIsLight) {
  candidate.isEnabled = false;
  candidate.registersAtLogin = true;
  surroundings.stats["com.acme.agent"] = {50.0, 900.0, true};
  const auto made = item();
  EXPECT_TRUE(made.isRunning);
  EXPECT_EQ(made.cpuPercent, 50.0);
  EXPECT_EQ(made.memoryMB, 900.0);
  EXPECT_EQ(made.footprint, Footprint::light);
  EXPECT_EQ(made.timing, Timing::startsWithMac);
}

TEST_F(ItemClassifierTest, unregisteredItemsRunNowOrOnDemand) {
  EXPECT_EQ(item().timing, Timing::onDemand);
  surroundings.stats["com.acme.agent"] = {0.0, 0.0, true};
  EXPECT_EQ(item().timing, Timing::runningNow);
  candidate.registersAtLogin = true;
  EXPECT_EQ(item().timing, Timing::startsWithMac);
}

TEST_F(ItemClassifierTest, isNewWhenItsFileWasMadeAfterTheLastVisit) {
  candidate.plistURL = "/Library/LaunchAgents/acme.plist";
  files.add("/Library/LaunchAgents/acme.plist", "", Date{1000.0});
  surroundings.lastVisit = Date{1000.0};
  EXPECT_FALSE(item().isNewSinceLastVisit);
  surroundings.lastVisit = Date{999.0};
  EXPECT_TRUE(item().isNewSinceLastVisit);
  EXPECT_EQ(item().firstSeenAt, Date{1000.0});
  surroundings.lastVisit = Date::distantPast();
  EXPECT_TRUE(item().isNewSinceLastVisit);
}

TEST_F(ItemClassifierTest, withoutAFileOrItsDateNothingIsNew) {
  surroundings.lastVisit = Date::distantPast();
  EXPECT_FALSE(item().isNewSinceLastVisit);
  candidate.plistURL = "/Library/LaunchAgents/acme.plist";  // paused, so the file has the longer name
  files.add("/Library/LaunchAgents/acme.plist.vorli-disabled", "", Date{1000.0});
  EXPECT_EQ(item().firstSeenAt, std::nullopt);
  EXPECT_FALSE(item().isNewSinceLastVisit);
}

TEST_F(ItemClassifierTest, aFileThatReplacedAPausedOneOnLinuxDoesNotDateIt) {
  candidate.plistURL = "/home/kim/.config/autostart/acme.desktop";
  candidate.isEnabled = false;
  files.add(*candidate.plistURL, "", Date{1000.0});
  surroundings.lastVisit = Date{500.0};
  const auto made = [this](HostSystem system) {
    return ItemClassifier(files, applications, system).classify(candidate, surroundings);
  };
  EXPECT_EQ(made(HostSystem::linuxDesktop).firstSeenAt, std::nullopt);
  EXPECT_FALSE(made(HostSystem::linuxDesktop).isNewSinceLastVisit);
  EXPECT_EQ(made(HostSystem::macOS).firstSeenAt, Date{1000.0});
  candidate.isEnabled = true;
  EXPECT_EQ(made(HostSystem::linuxDesktop).firstSeenAt, Date{1000.0});
}

TEST_F(ItemClassifierTest, onlyAFileOfTheUsersIsWritable) {
  candidate.plistIsUserWritable = true;
  EXPECT_FALSE(item().isUserWritable);
  candidate.plistURL = "/home/kim/Library/LaunchAgents/acme.plist";
  EXPECT_TRUE(item().isUserWritable);
  candidate.plistIsUserWritable = false;
  EXPECT_FALSE(item().isUserWritable);
}

TEST_F(ItemClassifierTest, aRunningApplicationIsFoundByEitherIdentifier) {
  installAcme();
  EXPECT_EQ(item().runningAppBundleID, std::nullopt);
  surroundings.runningIdentifiers = {"com.acme.agent"};
  EXPECT_EQ(item().runningAppBundleID, "com.acme.agent");
  surroundings.runningIdentifiers = {"com.acme.agent", "com.acme"};
  EXPECT_EQ(item().runningAppBundleID, "com.acme");
}

TEST_F(ItemClassifierTest, anAbsoluteProgramThatIsGoneMakesALeftover) {
  candidate.programPath = "/opt/acme/agent";
  EXPECT_TRUE(item().isLeftover);
  files.add("/opt/acme/agent");
  EXPECT_FALSE(item().isLeftover);
}

TEST_F(ItemClassifierTest, aProgramThatTheUserMayNotSeeIsNoLeftover) {
  candidate.programPath = "/root/backup.sh";
  EXPECT_TRUE(item().isLeftover);
  files.unseen = {"/root/"};
  EXPECT_FALSE(item().isLeftover);
}

TEST_F(ItemClassifierTest, aRelativeOrMissingProgramIsNoLeftover) {
  EXPECT_FALSE(item().isLeftover);
  candidate.programPath = "";
  EXPECT_FALSE(item().isLeftover);
  candidate.programPath = "agent";
  EXPECT_FALSE(item().isLeftover);
}

TEST_F(ItemClassifierTest, anotherCopyOfTheApplicationIsNoLeftover) {
  candidate.programPath = "/Volumes/Old/Acme.app/Contents/MacOS/agent";
  EXPECT_TRUE(item().isLeftover);
  installAcme();
  EXPECT_FALSE(item().isLeftover);
  files.files.clear();  // the system lists an application that does not exist
  EXPECT_TRUE(item().isLeftover);
}

}  // namespace
}  // namespace vorli
