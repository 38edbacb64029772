#include "startup/StatsByIdentifier.h"

#include <cmath>
#include <gtest/gtest.h>

namespace vorli {
namespace {

using ports::RunningApplication;

const std::vector<ports::ProcessUse> noProcesses;

RunningApplication runningApp(std::int32_t pid, const char* identifier) {
  return {.processIdentifier = pid, .bundleIdentifier = SharedText(identifier)};
}

TEST(StatsByIdentifierTest, addsUpTheInstancesOfAnApplication) {
  const auto stats =
      statsByIdentifier({runningApp(1, "com.acme"), runningApp(2, "com.acme"), runningApp(3, "com.other")},
                        {{{1, 2.5, 1024.0}, {2, 1.5, 2048.0}, {3, 0.5, 512.0}}}, {});
  EXPECT_EQ(stats.at("com.acme"), (ProcessStats{4.0, 3.0, true}));
  EXPECT_EQ(stats.at("com.other"), (ProcessStats{0.5, 0.5, true}));
}

TEST(StatsByIdentifierTest, anApplicationWithoutItsProcessWipesWhatCameBefore) {
  const auto stats =
      statsByIdentifier({runningApp(1, "com.acme"), runningApp(9, "com.acme")}, {{{1, 2.0, 1024.0}}}, {});
  EXPECT_EQ(stats.at("com.acme"), (ProcessStats{0.0, 0.0, false}));
}

TEST(StatsByIdentifierTest, aLaterInstanceBeginsAnew) {
  const auto stats =
      statsByIdentifier({runningApp(1, "com.acme"), runningApp(9, "com.acme"), runningApp(2, "com.acme")},
                        {{{1, 2.0, 1024.0}, {2, 3.0, 1024.0}}}, {});
  EXPECT_EQ(stats.at("com.acme"), (ProcessStats{3.0, 1.0, true}));
}

TEST(StatsByIdentifierTest, aProcessThatIsNoApplicationCountsForNobody) {
  RunningApplication nameless{.processIdentifier = 7};
  EXPECT_TRUE(statsByIdentifier({nameless}, {{{7, 90.0, 9000.0}, {8, 90.0, 9000.0}}}, {}).empty());
}

TEST(StatsByIdentifierTest, withoutAProcessListNothingIsKnown) {
  EXPECT_TRUE(statsByIdentifier({runningApp(1, "com.acme")}, std::nullopt, {}).empty());
}

TEST(StatsByIdentifierTest, anEmptyProcessListMeansThatNothingRuns) {
  const auto stats = statsByIdentifier({runningApp(1, "com.acme")}, noProcesses, {});
  EXPECT_EQ(stats.at("com.acme"), (ProcessStats{0.0, 0.0, false}));
}

TEST(StatsByIdentifierTest, aServiceRunsUnderItsOwnIdentifier) {
  const auto stats = statsByIdentifier({runningApp(1, "com.acme")}, {{{1, 1.0, 1024.0}}},
                                       {{"backup", 12.0, 300.0, true}, {"com.acme", 2.0, 5.0, true}});
  EXPECT_EQ(stats.at("backup"), (ProcessStats{12.0, 300.0, true}));
  EXPECT_EQ(stats.at("com.acme"), (ProcessStats{3.0, 6.0, true}));
}

TEST(StatsByIdentifierTest, aServiceOfTheSystemsIsAnotherThanTheUsersOfThatName) {
  const auto stats =
      statsByIdentifier({}, noProcesses, {{"mpd.service", 12.0, 300.0}, {"mpd.service", 1.0, 5.0, true}});
  EXPECT_EQ(stats.at("mpd.service@system"), (ProcessStats{12.0, 300.0, true}));
  EXPECT_EQ(stats.at("mpd.service"), (ProcessStats{1.0, 5.0, true}));
}

TEST(StatsByIdentifierTest, valuesThatAreNotNumbersAreNotCounted) {
  const auto stats =
      statsByIdentifier({runningApp(1, "a")}, {{{1, NAN, 1024.0}}}, {{"b", 1.0, INFINITY, true}});
  EXPECT_EQ(stats.at("a"), (ProcessStats{0.0, 0.0, false}));
  EXPECT_FALSE(stats.contains("b"));
}

}  // namespace
}  // namespace vorli
