#include "startup/StartupItem.h"

#include <gtest/gtest.h>
#include <unordered_set>

namespace vorli {
namespace {

constexpr Date today{1'800'000'000.0};
constexpr double day = 86400.0;

StartupItem itemMade(double secondsAgo) {
  StartupItem item;
  item.firstSeenAt = today + -secondsAgo;
  return item;
}

TEST(StartupItemTest, ageChangesItsWordsOnTheDay) {
  const std::pair<double, const char*> rows[] = {
      {0.001, "added today"},        {day - 1, "added today"},         {day, "1 day old"},
      {2 * day - 1, "1 day old"},    {2 * day, "2 days old"},          {30 * day - 1, "29 days old"},
      {30 * day, "1 month old"},     {60 * day - 1, "1 month old"},    {60 * day, "2 months old"},
      {359 * day, "11 months old"},  {360 * day - 1, "11 months old"}, {360 * day, "0 years old"},
      {362 * day, "0 years old"},    {365 * day - 1, "0 years old"},   {365 * day, "1 year old"},
      {730 * day - 1, "1 year old"}, {730 * day, "2 years old"},       {3650 * day, "10 years old"},
  };
  for (const auto& [seconds, expected] : rows)
    EXPECT_EQ(ageText(itemMade(seconds), today), expected) << seconds;
}

TEST(StartupItemTest, hasNoAgeWithoutADateInThePast) {
  EXPECT_EQ(ageText(StartupItem(), today), std::nullopt);
  EXPECT_EQ(ageText(itemMade(0.0), today), std::nullopt);
  EXPECT_EQ(ageText(itemMade(-1.0), today), std::nullopt);
}

TEST(StartupItemTest, anAbsurdDateIsHarmless) {
  EXPECT_EQ(ageText(itemMade(1e300), today), "2739726 years old");
}

TEST(StartupItemTest, originLineJoinsWhatIsKnown) {
  StartupItem item = itemMade(40 * day);
  EXPECT_EQ(originLine(item, today), "Hidden install, 1 month old");
  item.installerName = "Acme";
  EXPECT_EQ(originLine(item, today), "Hidden install, 1 month old, by Acme");
  item.firstSeenAt = today + day;
  EXPECT_EQ(originLine(item, today), "Hidden install, by Acme");
  item.installerName = "";
  EXPECT_EQ(originLine(item, today), "Hidden install");
}

TEST(StartupItemTest, theUsersOwnItemNamesNoInstaller) {
  StartupItem item = itemMade(2 * day);
  item.source = StartupItem::Source::userLinked;
  item.installerName = "you";
  EXPECT_EQ(originLine(item, today), "You installed this, 2 days old");
  item.installerName = "You";
  EXPECT_EQ(originLine(item, today), "You installed this, 2 days old, by You");
}

TEST(StartupItemTest, statusWordDescribesTheCost) {
  using enum StartupItem::Footprint;
  StartupItem item;
  EXPECT_EQ(statusWord(item), "Idle");
  item.isRunning = true;
  EXPECT_EQ(statusWord(item), "Small and quiet");
  item.footprint = medium;
  EXPECT_EQ(statusWord(item), "Using some power");
  item.footprint = heavy;
  EXPECT_EQ(statusWord(item), "Using a lot of power");
  item.isEnabled = false;
  EXPECT_EQ(statusWord(item), "Disabled");
}

TEST(StartupItemTest, footprintsHaveTextsAndAnOrder) {
  using enum StartupItem::Footprint;
  EXPECT_EQ(rawValue(light), "light");
  EXPECT_EQ(rawValue(medium), "medium");
  EXPECT_EQ(rawValue(heavy), "heavy");
  EXPECT_LT(light, medium);
  EXPECT_LT(medium, heavy);
}

TEST(StartupItemTest, everyFieldCountsForEqualityAndHash) {
  std::vector<StartupItem> items(21);
  items[1].id = "a";
  items[2].bundleID = "a";
  items[3].displayName = "a";
  items[4].description = "a";
  items[5].appURL = "a";
  items[6].plistURL = "a";
  items[7].isEnabled = false;
  items[8].footprint = StartupItem::Footprint::heavy;
  items[9].isRunning = true;
  items[10].cpuPercent = 1.0;
  items[11].memoryMB = 1.0;
  items[12].isUserWritable = true;
  items[13].timing = StartupItem::Timing::startsWithMac;
  items[14].source = StartupItem::Source::userLinked;
  items[15].firstSeenAt = today;
  items[16].isLeftover = true;
  items[17].isNewSinceLastVisit = true;
  items[18].installerName = "a";
  items[19].runningAppBundleID = "a";
  items[20].requiresConfirmation = true;

  std::unordered_set<std::size_t> hashes;
  for (const auto& item : items) hashes.insert(std::hash<StartupItem>()(item));
  EXPECT_EQ(hashes.size(), 21u);
  EXPECT_EQ(std::unordered_set<StartupItem>(items.begin(), items.end()).size(), 21u);
  EXPECT_EQ(items[10], StartupItem(items[10]));
}

}  // namespace
}  // namespace vorli
