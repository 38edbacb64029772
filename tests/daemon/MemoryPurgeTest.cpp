#include "daemon/MemoryPurge.h"
#include "tests/daemon/DaemonFakes.h"

namespace vorli::daemon {
namespace {

constexpr std::uint64_t mebibyte = 1 << 20;

struct MemoryPurgeTest : testing::Test {
  fakes::ManualScheduler clock;
  FakeMemory memory{clock};

  MemoryPurgeTest() {
    memory.before = MemoryReading{1000 * mebibyte, 5000 * mebibyte, 2000 * mebibyte, 300 * mebibyte};
    memory.after = MemoryReading{2830 * mebibyte, 5012 * mebibyte, 290 * mebibyte, 180 * mebibyte};
  }
  HelperReply run() { return MemoryPurge(memory, clock).run(); }
};

TEST_F(MemoryPurgeTest, writesBackThenDropsThenCompactsThenReports) {
  EXPECT_EQ(run(), (HelperReply{0, "Freed 1830 MiB (page cache 1710, slab 120), available +12 MiB, 0.1 s"}));
  EXPECT_EQ(memory.calls, (std::vector<std::string>{"read", "sync", "pages", "slab", "compact", "read"}));
}

TEST_F(MemoryPurgeTest, leavesASmallSlabAlone) {
  memory.before->reclaimableSlabBytes = 256 * mebibyte;
  run();
  EXPECT_EQ(std::ranges::count(memory.calls, "slab"), 0);
  memory.calls.clear();
  memory.before->reclaimableSlabBytes = 256 * mebibyte + 1;
  run();
  EXPECT_EQ(std::ranges::count(memory.calls, "slab"), 1);
}

TEST_F(MemoryPurgeTest, doesNotCompactWhenItWasSlowAlready) {
  memory.syncTakes = 1.79;
  run();
  EXPECT_EQ(std::ranges::count(memory.calls, "compact"), 1);
  memory.calls.clear();
  memory.syncTakes = 1.81;
  run();
  EXPECT_EQ(std::ranges::count(memory.calls, "compact"), 0);
}

TEST_F(MemoryPurgeTest, continuesWithoutAStuckWriteBackAndSaysSo) {
  memory.syncTakes = 1e9;
  EXPECT_EQ(run().output,
            "Freed 1830 MiB (page cache 1710, slab 120), available +12 MiB, 3.0 s, writing back still runs");
}

TEST_F(MemoryPurgeTest, aFailedDropIsAFailedPurge) {
  memory.pageCache = std::unexpected(SystemError{30, "Read-only file system"});
  EXPECT_EQ(run(), (HelperReply{30, "The page cache could not be dropped: Read-only file system"}));
  memory.pageCache = {};
  memory.calls.clear();
  memory.slab = std::unexpected(SystemError{13, "Permission denied"});
  EXPECT_EQ(run(), (HelperReply{13, "The slab caches could not be dropped: Permission denied"}));
}

TEST_F(MemoryPurgeTest, aFailedCompactionIsOnlyReported) {
  memory.compaction = std::unexpected(SystemError{2, "No such file or directory"});
  const auto reply = run();
  EXPECT_EQ(reply.exitCode, 0);
  EXPECT_TRUE(reply.output.ends_with(", not compacted: No such file or directory"));
}

TEST_F(MemoryPurgeTest, claimsNoSavingWhenThereWasNone) {
  memory.after = MemoryReading{900 * mebibyte, 4900 * mebibyte, 2100 * mebibyte, 400 * mebibyte};
  EXPECT_EQ(run().output, "Freed 0 MiB (page cache 0, slab 0), available -100 MiB, 0.1 s");
}

TEST_F(MemoryPurgeTest, givesNoFiguresWhenThereAreNone) {
  memory.before.reset();
  EXPECT_EQ(run(), (HelperReply{0, "Purged, 0.1 s"}));
}

}  // namespace
}  // namespace vorli::daemon
