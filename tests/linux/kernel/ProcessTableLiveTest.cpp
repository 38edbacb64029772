#include "linux/kernel/ProcessTable.h"
#include "posix/CalendarClock.h"
#include "tests/linux/RecordedTree.h"
#include "tests/linux/kernel/ListedPIDs.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <ctime>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

constexpr uid_t nobody = 65534;

std::string textOf(const std::string& file) {
  std::ifstream stream(file);
  std::string text;
  std::getline(stream, text);
  return text;
}

std::size_t openDescriptors() {
  const std::filesystem::directory_iterator entries("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

// Runs `body` in a child process, as the user nobody if this process may do so. Returns the result of `body`.
template <typename Body>
bool holdsForNobody(Body body) {
  const pid_t child = fork();
  if (child == 0) {
    if (geteuid() == 0 && (setgid(nobody) != 0 || setuid(nobody) != 0)) _exit(2);
    _exit(body() ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// A child that on request uses a tenth of a second of processor time, reports it, and waits.
class BurningChild {
 public:
  BurningChild() {
    EXPECT_EQ(pipe(toChild_), 0);
    EXPECT_EQ(pipe(fromChild_), 0);
    pid_ = fork();
    if (pid_ != 0) return;
    char byte = 0;
    if (::read(toChild_[0], &byte, 1) != 1) _exit(1);
    const auto start = std::clock();
    while (std::clock() - start < CLOCKS_PER_SEC / 10) continue;
    if (write(fromChild_[1], &byte, 1) != 1) _exit(1);
    pause();
    _exit(0);
  }
  ~BurningChild() {
    if (pid_ > 0) {  // -1 is a fork that failed, and would mean all processes
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    for (const int file : {toChild_[0], toChild_[1], fromChild_[0], fromChild_[1]}) close(file);
  }

  std::int32_t pid() const { return pid_; }
  void burn() const {
    char byte = 'b';
    ASSERT_EQ(write(toChild_[1], &byte, 1), 1);
    ASSERT_EQ(::read(fromChild_[0], &byte, 1), 1);
  }

 private:
  pid_t pid_ = -1;
  int toChild_[2] = {-1, -1};
  int fromChild_[2] = {-1, -1};
};

struct ProcessTableLiveTest : testing::Test {
  std::uint64_t ticksOf(std::int32_t pid) {
    ports::ProcessTaskInfo info;
    EXPECT_TRUE(table.readTaskInfo(pid, info));
    return info.totalUser + info.totalSystem;
  }

  posix::CalendarClock calendar;
  ProcessTable table{calendar};
};

TEST_F(ProcessTableLiveTest, theRowOfThisProcessIsRight) {
  const auto pids = listedPIDs(table);
  const std::int32_t own = getpid();
  ASSERT_TRUE(std::ranges::count(pids, own) == 1);
  EXPECT_TRUE(std::ranges::is_sorted(pids));

  ports::ProcessTaskInfo usage;
  ports::ProcessBSDInfo identity;
  ASSERT_TRUE(table.readTaskInfo(own, usage));
  ASSERT_TRUE(table.readBSDInfo(own, identity));
  EXPECT_EQ(identity.parentPID, getppid());
  EXPECT_EQ(identity.name, textOf("/proc/self/comm"));
  EXPECT_EQ(table.executablePath(own), SharedText(std::filesystem::read_symlink("/proc/self/exe").string()));
  EXPECT_GT(usage.residentBytes, 1024U * 1024);
  EXPECT_GT(table.exactResidentBytes(own).value_or(usage.residentBytes), 1024U * 1024);
}

TEST_F(ProcessTableLiveTest, aChildThatJustStartedHasTheStartTimeOfNow) {
  const double before = calendar.now().secondsSince1970;
  const BurningChild child;
  const double after = calendar.now().secondsSince1970;
  listedPIDs(table);
  ports::ProcessBSDInfo identity;
  ASSERT_TRUE(table.readBSDInfo(child.pid(), identity));
  EXPECT_EQ(identity.parentPID, getpid());
  EXPECT_GE(identity.startSeconds, static_cast<std::int64_t>(before) - 1);
  EXPECT_LE(identity.startSeconds, static_cast<std::int64_t>(after) + 1);
}

TEST_F(ProcessTableLiveTest, aChildThatBurnsProcessorTimeGainsTicks) {
  const BurningChild child;
  const auto before = ticksOf(child.pid());
  child.burn();
  const auto base = table.timebase();
  const auto nanoseconds = (ticksOf(child.pid()) - before) * base.numer / base.denom;
  EXPECT_GE(nanoseconds, 80'000'000U);
}

TEST_F(ProcessTableLiveTest, anEndedChildIsNotReadFromItsKeptFile) {
  std::int32_t pid = 0;
  {
    const BurningChild child;
    pid = child.pid();
    listedPIDs(table);
    ports::ProcessTaskInfo usage;
    ASSERT_TRUE(table.readTaskInfo(pid, usage));
    table.exactResidentBytes(pid);
  }
  EXPECT_FALSE(table.exactResidentBytes(pid));
  const auto pids = listedPIDs(table);
  EXPECT_EQ(std::ranges::count(pids, pid), 0);
}

TEST_F(ProcessTableLiveTest, aThousandPassesLeaveNoDescriptorOpen) {
  std::size_t afterFirst = 0;
  for (int pass = 0; pass < 1000; ++pass) {
    const auto pids = listedPIDs(table);
    ASSERT_FALSE(pids.empty());
    for (const auto pid : {pids.front(), std::int32_t{getpid()}, std::int32_t{4194305}}) {
      ports::ProcessTaskInfo usage;
      if (table.readTaskInfo(pid, usage)) table.executablePath(pid);
      table.exactResidentBytes(pid);
    }
    if (pass == 0) afterFirst = openDescriptors();
  }
  EXPECT_EQ(openDescriptors(), afterFirst);
}

TEST_F(ProcessTableLiveTest, anotherUsersProcessesAreRowsWithoutAPath) {
  EXPECT_TRUE(holdsForNobody([] {
    posix::CalendarClock calendar;
    ProcessTable table(calendar);
    const auto pids = listedPIDs(table);
    ports::ProcessTaskInfo usage;
    const bool seesFirst = std::ranges::count(pids, 1) == 1 && table.readTaskInfo(1, usage);
    const bool seesItself = table.readTaskInfo(getpid(), usage);
    return seesItself && (!seesFirst || !table.executablePath(1));
  }));
}

TEST(ProcessTableUnreadableTest, anEntryThatMayNotBeReadDropsOut) {
  const RecordedTree tree("no-psi");
  tree.process(5, "open");
  std::filesystem::permissions(tree.root(), std::filesystem::perms(0755));
  std::filesystem::permissions(tree.path("proc/1/stat"), std::filesystem::perms(0));
  std::filesystem::permissions(tree.path("proc/5/stat"), std::filesystem::perms(0444));
  EXPECT_TRUE(holdsForNobody([&tree] {
    posix::CalendarClock calendar;
    ProcessTable table(calendar, tree.root());
    ports::ProcessTaskInfo usage;
    return listedPIDs(table).size() == 2 && !table.readTaskInfo(1, usage) && table.readTaskInfo(5, usage);
  }));
}

}  // namespace
}  // namespace vorli::linuxhost
