#include "linux/kernel/ProcessTable.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/linux/RecordedTree.h"
#include "tests/linux/kernel/ListedPIDs.h"

#include <gtest/gtest.h>
#include <limits>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

using PIDs = std::vector<std::int32_t>;

const auto ticksPerSecond = static_cast<std::uint64_t>(sysconf(_SC_CLK_TCK));

struct ProcessTableTest : testing::Test {
  ProcessTableTest() { tree.write("proc/uptime", "1000.00 1.0\n"); }

  ports::ProcessBSDInfo identity(std::int32_t pid) {
    ports::ProcessBSDInfo info;
    EXPECT_TRUE(table.readBSDInfo(pid, info)) << pid;
    return info;
  }
  bool isReadable(std::int32_t pid) {
    ports::ProcessTaskInfo info;
    return table.readTaskInfo(pid, info);
  }
  std::string programOf(std::int32_t pid) {
    const auto path = table.executablePath(pid);
    return path ? std::string(path->view()) : "none";
  }

  RecordedTree tree;
  fakes::CalendarClock calendar{Date{1'700'000'000.0}};
  ProcessTable table{calendar, tree.root()};
};

TEST(ProcessTableLaptopTest, readsTheProcessesOfALaptop) {
  const RecordedTree tree("laptop");
  tree.program(1, "/usr/lib/systemd/systemd");
  tree.program(2310, "/usr/lib/browser/browser");
  const fakes::CalendarClock calendar(Date{1'700'010'609.9});
  ProcessTable table(calendar, tree.root());
  EXPECT_EQ(listedPIDs(table), (PIDs{1, 2, 87, 2310}));

  ports::ProcessTaskInfo usage;
  ports::ProcessBSDInfo identity;
  ASSERT_TRUE(table.readTaskInfo(2310, usage));
  ASSERT_TRUE(table.readBSDInfo(2310, identity));
  EXPECT_EQ(usage.totalUser, 61022U);
  EXPECT_EQ(usage.totalSystem, 9034U);
  EXPECT_EQ(usage.residentBytes, 180224 * pageBytes);
  EXPECT_EQ(identity.name, "Web Content (2)");
  EXPECT_EQ(identity.parentPID, 1);
  EXPECT_EQ(identity.startSeconds, static_cast<std::int64_t>(1'700'010'609.9 - 11610.0 +
                                                             501233.0 / static_cast<double>(ticksPerSecond)));
  EXPECT_EQ(table.executablePath(2310), "/usr/lib/browser/browser");
  EXPECT_EQ(table.exactResidentBytes(2310), 181000 * pageBytes);

  ASSERT_TRUE(table.readTaskInfo(87, usage));
  ASSERT_TRUE(table.readBSDInfo(87, identity));
  EXPECT_EQ(identity.name, "kworker/u16:3-events_unbound");
  EXPECT_EQ(usage.residentBytes, 0U);
  EXPECT_FALSE(table.executablePath(87));
}

TEST(ProcessTableOldKernelTest, aSizeThatIsExactAlreadyIsNotReadAgain) {
  const RecordedTree tree("no-psi");
  const fakes::CalendarClock calendar;
  ProcessTable table(calendar, tree.root());
  EXPECT_EQ(listedPIDs(table), PIDs{1});
  EXPECT_FALSE(table.exactResidentBytes(1));
}

TEST_F(ProcessTableTest, timesAreInClockTicks) {
  const auto base = table.timebase();
  EXPECT_EQ(base.numer / base.denom, 1'000'000'000U / ticksPerSecond);
}

TEST_F(ProcessTableTest, onlyNumbersAreProcesses) {
  for (const std::string name : {"self", "12a", "0", "007", "-5", "99999999999", "2147483648", "sys"}) {
    tree.write("proc/" + name + "/stat", RecordedTree::statLine(1, name));
  }
  tree.process(2147483647, "last");
  tree.process(9, "nine");
  tree.process(10, "ten");
  EXPECT_EQ(listedPIDs(table), (PIDs{9, 10, 2147483647}));
}

TEST_F(ProcessTableTest, aListingLongerThanOneBufferIsWhole) {
  PIDs expected;
  for (std::int32_t pid = 1; pid <= 3000; ++pid) {
    std::filesystem::create_directory(tree.path("proc/" + std::to_string(pid)));
    expected.push_back(pid);
  }
  EXPECT_EQ(listedPIDs(table), expected);
}

TEST_F(ProcessTableTest, aSmallerBufferGetsTheFrontAndTheSizeIsInBytes) {
  for (const std::int32_t pid : {1, 2, 3}) tree.process(pid, "p");
  EXPECT_EQ(table.listAllPIDs({}), 3);
  PIDs two(2);
  EXPECT_EQ(table.listAllPIDs(two), 8);
  EXPECT_EQ(two, (PIDs{1, 2}));
  PIDs five(5);
  EXPECT_EQ(table.listAllPIDs(five), 12);
  EXPECT_EQ(five, (PIDs{1, 2, 3, 0, 0}));
}

TEST_F(ProcessTableTest, withoutAProcFolderTheListingFailsAndComesBackWithIt) {
  std::filesystem::rename(tree.path("proc"), tree.path("elsewhere"));
  EXPECT_LT(table.listAllPIDs({}), 1);
  EXPECT_FALSE(isReadable(1));
  EXPECT_FALSE(table.exactResidentBytes(1));
  std::filesystem::rename(tree.path("elsewhere"), tree.path("proc"));
  tree.process(1, "init");
  EXPECT_EQ(listedPIDs(table), PIDs{1});
}

TEST_F(ProcessTableTest, namesOfAnyBytesAreReturnedUnchanged) {
  const std::string names[] = {"Web Content (2)", "a b", "two\nlines", "\xff\xfe\x80",
                               ") S 1 2 (",       "",    "ends)",      std::string(63, 'w')};
  std::int32_t pid = 100;
  for (const auto& name : names) {
    ++pid;
    tree.process(pid, name, {.parent = pid});
  }
  listedPIDs(table);
  pid = 100;
  for (const auto& name : names) {
    const auto info = identity(++pid);
    EXPECT_EQ(info.name, name);
    EXPECT_EQ(info.parentPID, pid);
  }
}

TEST_F(ProcessTableTest, oneReadingServesAllThatIsAskedOfAProcess) {
  tree.process(7, "before", {.userTicks = 5});
  ASSERT_TRUE(isReadable(7));
  tree.process(7, "after", {.userTicks = 6});
  EXPECT_EQ(identity(7).name, "before");
  ports::ProcessTaskInfo usage;
  ASSERT_TRUE(table.readTaskInfo(7, usage));
  EXPECT_EQ(usage.totalUser, 6U);
  EXPECT_EQ(identity(7).name, "after");
}

TEST_F(ProcessTableTest, aListingEndsTheReadingOfThePassBefore) {
  tree.process(7, "before");
  ASSERT_TRUE(isReadable(7));
  tree.process(7, "after");
  listedPIDs(table);
  EXPECT_EQ(identity(7).name, "after");
}

TEST_F(ProcessTableTest, aProcessThatVanishesBetweenTheReadsDropsOut) {
  tree.process(7, "seven");
  tree.process(8, "eight");
  listedPIDs(table);
  ASSERT_TRUE(isReadable(7));
  tree.remove("proc/8");
  EXPECT_FALSE(isReadable(8));
  ports::ProcessBSDInfo info;
  EXPECT_FALSE(table.readBSDInfo(8, info));
  EXPECT_EQ(programOf(8), "none");
  EXPECT_FALSE(table.exactResidentBytes(8));
  EXPECT_TRUE(isReadable(7));
  EXPECT_EQ(listedPIDs(table), PIDs{7});
}

TEST_F(ProcessTableTest, brokenStatFilesAreUnreadableProcesses) {
  tree.write("proc/1/stat", "");
  tree.write("proc/2/stat", "2 (cut sho");
  tree.write("proc/3/stat", RecordedTree::statLine(3, std::string(2000, 'x')));  // the rest is out of reach
  tree.write("proc/4/stat", RecordedTree::statLine(4, "minus", {.parent = -2}));
  tree.write("proc/5/stat",
             RecordedTree::statLine(5, "huge", {.userTicks = std::numeric_limits<std::uint64_t>::max()}));
  tree.replaceByFolder("proc/6/stat");
  tree.replaceByFIFO("proc/7/stat");
  tree.write("proc/8", "a file");
  std::filesystem::create_directory(tree.path("proc/9"));
  for (const auto pid : listedPIDs(table)) EXPECT_FALSE(isReadable(pid)) << pid;
  EXPECT_FALSE(isReadable(0));
  EXPECT_FALSE(isReadable(-1));
  EXPECT_FALSE(isReadable(std::numeric_limits<std::int32_t>::min()));
}

TEST_F(ProcessTableTest, anOverlongLineIsReadAsFarAsItIsNeeded) {
  tree.write("proc/1/stat", RecordedTree::statLine(1, "long") + std::string(5000, '7'));
  EXPECT_EQ(identity(1).name, "long");
}

TEST_F(ProcessTableTest, theLargestSizeStaysWithin64Bits) {
  tree.process(1, "big", {.residentPages = 140737488355327});
  ports::ProcessTaskInfo usage;
  ASSERT_TRUE(table.readTaskInfo(1, usage));
  EXPECT_EQ(usage.residentBytes / pageBytes, 140737488355327U);
}

TEST_F(ProcessTableTest, startTimesFollowTheCalendarWhenItIsSetAndAreConstantOtherwise) {
  tree.process(7, "seven", {.startTicks = 500 * ticksPerSecond});
  listedPIDs(table);
  EXPECT_EQ(identity(7).startSeconds, 1'700'000'000 - 1000 + 500);
  calendar.advance(-0.4);  // read a moment apart from the uptime
  listedPIDs(table);
  EXPECT_EQ(identity(7).startSeconds, 1'700'000'000 - 1000 + 500);
  calendar.advance(3600);
  listedPIDs(table);
  EXPECT_EQ(identity(7).startSeconds, 1'700'000'000 + 3599 - 1000 + 500);
}

TEST_F(ProcessTableTest, withoutAnUptimeEveryProcessHasOnlyJustStarted) {
  tree.remove("proc/uptime");
  tree.process(7, "seven", {.startTicks = 0});
  listedPIDs(table);
  EXPECT_EQ(identity(7).startSeconds, 1'700'000'000);
}

TEST_F(ProcessTableTest, exactSizesAreReadAnewAndSurviveAnotherProcessOfThatNumber) {
  tree.process(7, "seven");
  tree.write("proc/7/statm", "100 60 1 1 0 1 0\n");
  listedPIDs(table);
  EXPECT_EQ(table.exactResidentBytes(7), 60 * pageBytes);
  tree.write("proc/7/statm", "100 70 1 1 0 1 0\n");
  EXPECT_EQ(table.exactResidentBytes(7), 70 * pageBytes);
  tree.write("proc/7/statm", "");  // like a file kept open of a process that ended, with nothing to read
  EXPECT_FALSE(table.exactResidentBytes(7));
  tree.remove("proc/7/statm");
  tree.write("proc/7/statm", "100 80 1 1 0 1 0\n");
  EXPECT_EQ(table.exactResidentBytes(7), 80 * pageBytes);
}

}  // namespace
}  // namespace vorli::linuxhost
