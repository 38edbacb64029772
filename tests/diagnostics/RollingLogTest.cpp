#include "diagnostics/RollingLog.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace vorli {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct RollingLogTest : testing::Test {
  const std::string current = "/home/kim/Logs/Vorli/diagnostics.log";
  const std::string previous = "/home/kim/Logs/Vorli/diagnostics.1.log";
  fakes::Files files;
  fakes::CalendarClock calendar{Date{1'772'357'405.123}};
  fakes::CapturedLog systemLog;
  RollingLog log{files, calendar, "/home/kim/Logs/Vorli"};

  /// The number of bytes that a message of this length adds.
  static constexpr std::size_t lineBytes(std::size_t message) { return 24 + 1 + 7 + message + 1; }
};

TEST_F(RollingLogTest, firstLineMakesTheFolderAndTheFile) {
  log.write("INFO", "Vorli launched, v1.0 (build 7)");
  EXPECT_TRUE(files.folders.contains("/home/kim/Logs/Vorli"));
  EXPECT_EQ(files.contents[current], "2026-03-01T09:30:05.123Z [INFO] Vorli launched, v1.0 (build 7)\n");
}

TEST_F(RollingLogTest, linesFollowOneAnotherAndMayHoldLineFeeds) {
  log.write("INFO", "one");
  calendar.advance(1.0);
  log.write("FATAL", "two\nthree");
  EXPECT_EQ(files.contents[current],
            "2026-03-01T09:30:05.123Z [INFO] one\n2026-03-01T09:30:06.123Z [FATAL] two\nthree\n");
}

TEST_F(RollingLogTest, systemLogHasEachLineToo) {
  log.write("WARN", "Update check failed: no");
  EXPECT_THAT(systemLog.lines(), ElementsAre(fakes::CapturedLog::Line{LogLevel::standard, "diagnostics",
                                                                      "WARN: Update check failed: no"}));
}

TEST_F(RollingLogTest, logOfAMillionBytesStaysAndOneByteMoreIsMovedAway) {
  files.folders.insert("/home/kim/Logs/Vorli");
  files.contents[current] = std::string(1'000'000 - lineBytes(1), 'x');
  log.write("INFO", "y");
  ASSERT_EQ(files.contents[current].size(), 1'000'000u);
  EXPECT_FALSE(files.contents.contains(previous));

  files.contents[current] = std::string(1'000'001 - lineBytes(1), 'x');
  log.write("INFO", "y");
  EXPECT_FALSE(files.contents.contains(current));
  EXPECT_EQ(files.contents[previous].size(), 1'000'001u);
}

TEST_F(RollingLogTest, previousLogIsReplaced) {
  files.folders.insert("/home/kim/Logs/Vorli");
  files.contents[previous] = "old";
  files.contents[current] = std::string(1'000'000, 'x');
  log.write("INFO", "last");
  EXPECT_TRUE(files.contents[previous].ends_with("[INFO] last\n"));
  log.write("INFO", "first");
  EXPECT_EQ(files.contents[current], "2026-03-01T09:30:05.123Z [INFO] first\n");
}

TEST_F(RollingLogTest, logThatCannotBeMovedGrowsToTwiceItsLimit) {
  files.folders = {"/home/kim/Logs/Vorli", previous};
  files.contents[current] = std::string(2'000'000 - lineBytes(1), 'x');
  log.write("INFO", "y");
  EXPECT_EQ(files.contents[current].size(), 2'000'000u);
  EXPECT_TRUE(files.folders.contains(previous));
}

TEST_F(RollingLogTest, logThatCannotBeMovedKeepsItsNewestLines) {
  files.folders = {"/home/kim/Logs/Vorli", previous};
  const std::string kept = std::string(1'000'000 - 1 - lineBytes(1), 'z') + "\n";
  files.contents[current] = std::string(1'000'000, 'x') + "\n" + kept;
  log.write("INFO", "y");
  EXPECT_EQ(files.contents[current], kept + "2026-03-01T09:30:05.123Z [INFO] y\n");

  files.contents[current] = std::string(999'999, 'x') + "\nz" + kept;
  log.write("INFO", "y");
  EXPECT_EQ(files.contents[current], "2026-03-01T09:30:05.123Z [INFO] y\n");
  EXPECT_TRUE(files.folders.contains(previous));
}

TEST_F(RollingLogTest, logThatCannotBeReadOrMovedStartsAgain) {
  files.folders = {"/home/kim/Logs/Vorli", previous};
  files.contents[current] = std::string(2'000'001, 'x');
  files.unreadable.insert(current);
  log.write("INFO", "lost");
  EXPECT_EQ(files.contents[current], "");
  log.write("INFO", "kept");
  EXPECT_EQ(files.contents[current], "2026-03-01T09:30:05.123Z [INFO] kept\n");
}

TEST_F(RollingLogTest, invalidMessageIsLeftOutEverywhere) {
  files.folders.insert("/home/kim/Logs/Vorli");
  files.contents[current] = std::string(1'000'001, 'x');
  log.write("INFO", "broken \xFF");
  EXPECT_EQ(files.contents[current].size(), 1'000'001u);  // not even moved
  EXPECT_THAT(systemLog.lines(), IsEmpty());
}

TEST_F(RollingLogTest, fullDiskLosesOnlyTheLine) {
  files.isReadOnly = true;
  log.write("INFO", "lost");
  files.isReadOnly = false;
  log.write("INFO", "kept");
  EXPECT_EQ(files.contents[current], "2026-03-01T09:30:05.123Z [INFO] kept\n");
  EXPECT_EQ(systemLog.count("INFO: lost"), 1);
}

TEST_F(RollingLogTest, recentLinesAreThePiecesBetweenLineFeeds) {
  EXPECT_THAT(log.recentLines(100), IsEmpty());
  files.contents[current] = "";
  EXPECT_THAT(log.recentLines(100), ElementsAre(""));
  files.contents[current] = "a\n\nb";
  EXPECT_THAT(log.recentLines(100), ElementsAre("a", "", "b"));
  files.contents[current] = "a\n\nb\n";
  EXPECT_THAT(log.recentLines(100), ElementsAre("a", "", "b", ""));
  EXPECT_THAT(log.recentLines(4), ElementsAre("a", "", "b", ""));
  EXPECT_THAT(log.recentLines(3), ElementsAre("", "b", ""));
  EXPECT_THAT(log.recentLines(0), IsEmpty());
}

TEST_F(RollingLogTest, logOfMoreThanSixteenMillionBytesHasNoLines) {
  files.contents[current] = std::string(15'999'998, 'x') + "\na";
  EXPECT_THAT(log.recentLines(1), ElementsAre("a"));
  files.contents[current] += 'b';
  EXPECT_THAT(log.recentLines(1), IsEmpty());
}

TEST_F(RollingLogTest, invalidLogHasNoLines) {
  files.contents[current] = "a\nb\xC3\n";
  EXPECT_THAT(log.recentLines(1), IsEmpty());
}

}  // namespace
}  // namespace vorli
