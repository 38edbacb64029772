#include "startup/StartupScan.h"
#include "tests/fakes/InstalledApplications.h"
#include "tests/fakes/ProcessUsage.h"
#include "tests/fakes/StartupFiles.h"
#include "tests/fakes/TextOrder.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace vorli {
namespace {

using Footprint = StartupItem::Footprint;

struct StartupScanTest : testing::Test {
  fakes::StartupFiles files;
  fakes::InstalledApplications applications;
  fakes::ProcessUsage usage;
  fakes::TextOrder textOrder;
  std::vector<StartupItem> items;

  StartupItem& add(std::string id, Footprint footprint, double cpu, double memory, bool isRunning) {
    auto& item = items.emplace_back();
    item.displayName = item.id = std::move(id);
    item.footprint = footprint;
    item.cpuPercent = cpu;
    item.memoryMB = memory;
    item.isRunning = isRunning;
    return item;
  }
  std::vector<std::string> order() {
    std::vector<std::string> reference;
    std::ranges::sort(items, {}, &StartupItem::id);
    do {  // the result does not depend on the given order
      auto sorted = items;
      sortItems(sorted, textOrder);
      std::vector<std::string> ids;
      for (const auto& item : sorted) ids.push_back(item.id);
      if (reference.empty()) reference = ids;
      EXPECT_EQ(ids, reference);
    } while (std::ranges::next_permutation(items, {}, &StartupItem::id).found);
    return reference;
  }
};

TEST_F(StartupScanTest, eachScanLooksForApplicationsAgain) {
  const StartupScan scan({files, applications, usage, textOrder}, {});
  scan.gather();
  scan.gather();
  EXPECT_EQ(applications.looks, 2);
}

TEST_F(StartupScanTest, theHeaviestComeFirst) {
  add("light", Footprint::light, 0.0, 9000.0, true);
  add("medium", Footprint::medium, 0.0, 150.0, true);
  add("heavy", Footprint::heavy, 5.0, 0.0, true);
  EXPECT_EQ(order(), (std::vector<std::string>{"heavy", "medium", "light"}));
}

TEST_F(StartupScanTest, onePercentCountsAsTenMebibytes) {
  add("score 70", Footprint::light, 3.0, 40.0, true);
  add("score 100", Footprint::light, 0.0, 100.0, true);
  EXPECT_EQ(order(), (std::vector<std::string>{"score 100", "score 70"}));
}

TEST_F(StartupScanTest, ofEqualScoresTheRunningOneComesFirst) {
  add("a idle", Footprint::light, 0.0, 0.0, false);
  add("z runs", Footprint::light, 0.0, 0.0, true);
  EXPECT_EQ(order(), (std::vector<std::string>{"z runs", "a idle"}));
}

TEST_F(StartupScanTest, namesDecideWithoutRegardToCase) {
  add("beta", Footprint::light, 0.0, 0.0, false);
  add("Alpha", Footprint::light, 0.0, 0.0, false);
  add("Gamma", Footprint::light, 0.0, 0.0, false);
  EXPECT_EQ(order(), (std::vector<std::string>{"Alpha", "beta", "Gamma"}));
}

TEST_F(StartupScanTest, itemsOfOneNameKeepAnOrder) {
  add("b", Footprint::light, 0.0, 0.0, false).displayName = "Same";
  add("a", Footprint::light, 0.0, 0.0, false).displayName = "Same";
  EXPECT_EQ(order(), (std::vector<std::string>{"a", "b"}));
}

TEST_F(StartupScanTest, takesOneLookAtTheProcessesForAllItems) {
  const StartupScan scan({files, applications, usage, textOrder}, {});
  GatheredCandidates gathered;
  for (const char* id : {"com.acme.a", "com.acme.b", "com.acme.c"})
    gathered.byIdentifier[id] = {.identifier = id};
  usage.rows = {{{42, 6.0, 2048.0}}};
  const auto found = scan.classify(
      gathered, {{.processIdentifier = 42, .bundleIdentifier = SharedText("com.acme.b")}}, Date{0.0});
  ASSERT_EQ(found.size(), 3u);
  EXPECT_EQ(usage.looks, 1);
  EXPECT_EQ(found[0].id, "com.acme.b");
  EXPECT_EQ(found[0].memoryMB, 2.0);
  EXPECT_EQ(found[0].footprint, Footprint::heavy);
  EXPECT_EQ(found[0].runningAppBundleID, "com.acme.b");
  EXPECT_FALSE(found[1].isRunning);
}

TEST_F(StartupScanTest, withoutAProcessListEverythingIsIdle) {
  const StartupScan scan({files, applications, usage, textOrder}, {});
  GatheredCandidates gathered;
  gathered.byIdentifier["com.acme.b"] = {.identifier = "com.acme.b"};
  usage.rows = std::nullopt;
  const auto found = scan.classify(
      gathered, {{.processIdentifier = 42, .bundleIdentifier = SharedText("com.acme.b")}}, Date{0.0});
  EXPECT_FALSE(found.at(0).isRunning);
  EXPECT_EQ(found.at(0).runningAppBundleID, "com.acme.b");
}

}  // namespace
}  // namespace vorli
