#include "startup/StartupItemService.h"
#include "tests/fakes/Publish.h"
#include "tests/startup/StartupFixture.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

using Strings = std::vector<std::string>;

struct StartupItemServiceTest : StartupFixture {};

TEST_F(StartupItemServiceTest, startsWithoutItems) {
  EXPECT_TRUE(startup->items.get().empty());
  EXPECT_EQ(startup->hiddenSystemCount.get(), 0);
  EXPECT_FALSE(startup->isScanning.get());
  EXPECT_EQ(startup->btmStatus.get(), BTMStatus(btm_status::Unknown()));
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
  EXPECT_EQ(startup->helperUnavailable.get(), std::nullopt);
  EXPECT_EQ(startup->lastVisitAtScanTime(), Date::distantPast());
}

TEST_F(StartupItemServiceTest, aScanPublishesWhatItFound) {
  files.add(mine);
  files.add("/Library/LaunchAgents/com.apple.thing.plist");
  startup->refresh();
  EXPECT_TRUE(startup->isScanning.get());
  EXPECT_TRUE(startup->items.get().empty());
  settle();
  EXPECT_FALSE(startup->isScanning.get());
  EXPECT_TRUE(isListed("com.acme.agent"));
  EXPECT_EQ(startup->items->size(), 1u);
  EXPECT_EQ(startup->hiddenSystemCount.get(), 1);
  EXPECT_EQ(startup->btmStatus.get(), BTMStatus(btm_status::Loaded{1}));
}

TEST_F(StartupItemServiceTest, aScanBeginsOnceTheUsageOfProcessesIsThatOfThePresent) {
  usage.secondsUntilReading = 1.0;
  startup->refresh();
  scheduler.advance(0.9);
  files.add(mine);
  EXPECT_EQ(usage.looks, 0);
  EXPECT_TRUE(startup->isScanning.get());
  settle();
  EXPECT_EQ(usage.looks, 1);
  EXPECT_TRUE(isListed("com.acme.agent"));
  EXPECT_FALSE(startup->isScanning.get());
}

TEST_F(StartupItemServiceTest, publishesInAFixedOrder) {
  files.add(mine);
  Strings order;
  const auto note = [&](std::string name) { return [&order, name](const auto&) { order.push_back(name); }; };
  const auto a = startup->isScanning.subscribeToChanges(note("isScanning"));
  const auto b = startup->btmStatus.subscribeToChanges(note("btmStatus"));
  const auto c = startup->hiddenSystemCount.subscribeToChanges(note("hiddenSystemCount"));
  const auto d = startup->items.subscribeToChanges(note("items"));
  scan();
  EXPECT_EQ(order, (Strings{"isScanning", "items", "hiddenSystemCount", "btmStatus", "isScanning"}));
}

TEST_F(StartupItemServiceTest, theListStaysDuringTheNextScan) {
  files.add(mine);
  scan();
  files.files.clear();
  startup->refresh();
  EXPECT_TRUE(isListed("com.acme.agent"));
  settle();
  EXPECT_TRUE(startup->items.get().empty());
  EXPECT_EQ(startup->btmStatus.get(), BTMStatus(btm_status::Loaded{0}));
}

TEST_F(StartupItemServiceTest, ofTwoScansTheLaterOneCounts) {
  startup->refresh();
  scheduler.advance(0.15);
  files.add(mine);
  startup->refresh();
  scheduler.advance(0.1);
  EXPECT_FALSE(isListed("com.acme.agent"));
  settle();
  EXPECT_TRUE(isListed("com.acme.agent"));
  EXPECT_FALSE(startup->isScanning.get());
}

TEST_F(StartupItemServiceTest, theLastVisitIsReadWhenAScanBegins) {
  files.add(mine, "", Date{500.0});
  scan();
  EXPECT_TRUE(item("com.acme.agent").isNewSinceLastVisit);

  defaults.values["vorli.startup.lastSneakyVisitAt"] = Date{500.0};
  scan();
  EXPECT_EQ(startup->lastVisitAtScanTime(), Date{500.0});
  EXPECT_FALSE(item("com.acme.agent").isNewSinceLastVisit);

  defaults.values["vorli.startup.lastSneakyVisitAt"] = std::string("yesterday");
  scan();
  EXPECT_EQ(startup->lastVisitAtScanTime(), Date::distantPast());
}

TEST_F(StartupItemServiceTest, runningApplicationsAreReadBetweenTheTwoHalves) {
  files.add(mine);
  usage.rows = {{{7, 6.0, 1024.0}}};
  source.whenAsked = [&] { workspace.add(7, SharedText("Acme"), SharedText("com.acme.agent")); };
  scan();
  EXPECT_EQ(workspace.listings, 1);
  EXPECT_EQ(usage.looks, 1);
  EXPECT_EQ(item("com.acme.agent").runningAppBundleID, "com.acme.agent");
  EXPECT_EQ(item("com.acme.agent").footprint, StartupItem::Footprint::heavy);
}

TEST_F(StartupItemServiceTest, aServiceThatIsGoneStoresNothing) {
  files.add(mine);
  startup->refresh();
  scheduler.advance(0.15);
  startup.reset();
  settle();
}

TEST_F(StartupItemServiceTest, leftoversAreListedInOrder) {
  files.add("/home/kim/Library/LaunchAgents/com.b.gone.plist", "/opt/b");
  files.add("/home/kim/Library/LaunchAgents/com.a.gone.plist", "/opt/a");
  files.add(mine);
  scan();
  const auto leftovers = startup->leftoverItems();
  ASSERT_EQ(leftovers.size(), 2u);
  EXPECT_EQ(leftovers[0].id, "com.a.gone");
  EXPECT_EQ(leftovers[1].id, "com.b.gone");
}

TEST_F(StartupItemServiceTest, updatersAreTheEnabledOnesWhoseSentenceSaysSo) {
  const auto row = [](const char* id, const char* description, bool isEnabled, bool isLeftover) {
    StartupItem made;
    made.id = id;
    made.description = description;
    made.isEnabled = isEnabled;
    made.isLeftover = isLeftover;
    return made;
  };
  fakes::publish(startup->items,
                 {row("a", "Updates Firefox quietly in the background.", true, false),
                  row("b", "Checks for updates quietly in the background.", true, false),
                  row("c", "The Acme Updater.", true, false), row("d", "UPDATES everything.", true, false),
                  row("e", "Updates Firefox quietly in the background.", false, false),
                  row("f", "Updates Firefox quietly in the background.", true, true),
                  row("g", "Updater of things.", true, false)});
  Strings ids;
  for (const auto& each : startup->updaterItems()) ids.push_back(each.id);
  EXPECT_EQ(ids, (Strings{"a", "c", "d"}));
}

}  // namespace
}  // namespace vorli
