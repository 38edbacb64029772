#include "macos/daemon/DaemonLog.h"
#include "macos/daemon/KernelMemory.h"
#include "macos/daemon/ProcessPins.h"
#include "macos/daemon/Tool.h"
#include "macos/daemon/WorkerDNSCache.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/macos/runtime/Dispatch.h"
#include "tests/macos/runtime/Files.h"
#include "tests/macos/runtime/Kernel.h"
#include "tests/macos/runtime/Log.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace vorli::machost {
namespace {

using Lines = std::vector<std::string>;
using State = daemon::DNSCache::Outcome::State;

TEST(DaemonLogTest, linesAreInTheSystemsLogWithTheirImportance) {
  DaemonLog log;
  log.write(daemon::LogImportance::detail, "one");
  log.write(daemon::LogImportance::notice, "two");
  log.write(daemon::LogImportance::warning, "three");
  EXPECT_EQ(macfake::log().lines,
            (Lines{"com.kv.vorli.helper/daemon 2: one", "com.kv.vorli.helper/daemon 0: two",
                   "com.kv.vorli.helper/daemon 16: three"}));
}

TEST(KernelMemoryTest, figuresAreInBytes) {
  macfake::kernel().memory = {.free_count = 10, .inactive_count = 5, .external_page_count = 3};
  KernelMemory memory;
  const auto reading = memory.read();
  ASSERT_TRUE(reading);
  EXPECT_EQ(reading->freeBytes, 10U * 16384);
  EXPECT_EQ(reading->availableBytes, 15U * 16384);
  EXPECT_EQ(reading->pageCacheBytes, 3U * 16384);
  EXPECT_EQ(reading->reclaimableSlabBytes, 0U);
  EXPECT_EQ(macfake::kernel().askedMemoryWords, 62U);
}

TEST(KernelMemoryTest, countsOfPagesDoNotOverflow) {
  macfake::kernel().memory = {.free_count = 4'000'000'000, .inactive_count = 4'000'000'000};
  EXPECT_EQ(KernelMemory().read()->availableBytes, 8'000'000'000ULL * 16384);
}

TEST(KernelMemoryTest, aKernelThatRefusesGivesNothingAndTheRightToAskIsGivenBack) {
  macfake::kernel().status = KERN_FAILURE;
  EXPECT_FALSE(KernelMemory().read());
  EXPECT_EQ(macfake::kernel().hostReferences, 0);
}

TEST(KernelMemoryTest, aWriteBackThatTakesTooLongContinuesAlone) {
  KernelMemory memory;
  EXPECT_TRUE(memory.syncWithin(5.0));
  macfake::letWaitsRunOut();
  memory.syncWithin(5.0);
  macfake::joinThreads();
}

TEST(KernelMemoryTest, thisKernelHasNoOtherCaches) {
  KernelMemory memory;
  EXPECT_TRUE(memory.dropSlab());
  EXPECT_TRUE(memory.compact());
}

TEST(DaemonToolTest, bothOutputsAndTheStatusAreReturned) {
  const auto run = runTool("/bin/sh", {"-c", "echo out; echo err >&2; exit 3"}, 20.0);
  ASSERT_TRUE(run);
  EXPECT_EQ(run->exitStatus, 3);
  EXPECT_EQ(run->output, "out\nerr\n");
}

TEST(DaemonToolTest, nothingOfTheDaemonsEnvironmentIsPassedOn) {
  setenv("VORLI_SECRET", "1", 1);
  const auto run = runTool("/usr/bin/env", {}, 20.0);
  unsetenv("VORLI_SECRET");
  ASSERT_TRUE(run);
  EXPECT_TRUE(run->output == "LC_ALL=C\nPATH=/usr/bin:/bin:/usr/sbin:/sbin\n" ||
              run->output == "PATH=/usr/bin:/bin:/usr/sbin:/sbin\nLC_ALL=C\n")
      << run->output;
}

TEST(DaemonToolTest, theToolHasNoInput) {
  const auto run = runTool("/bin/cat", {}, 20.0);
  ASSERT_TRUE(run);
  EXPECT_EQ(run->output, "");
}

TEST(DaemonToolTest, moreOutputThanAPipeHoldsDoesNotStopTheTool) {
  const auto run = runTool("/bin/sh", {"-c", "head -c 300000 /dev/zero | tr '\\0' x"}, 20.0);
  ASSERT_TRUE(run);
  EXPECT_EQ(run->output, std::string(300000, 'x'));
}

TEST(DaemonToolTest, aToolThatCannotBeStartedIsAnError) {
  const auto run = runTool("/nowhere/tool", {}, 20.0);
  ASSERT_FALSE(run);
  EXPECT_EQ(run.error(), (daemon::SystemError{ENOEXEC, "The file doesn't exist."}));
}

TEST(DaemonToolTest, aToolThatASignalEndedIsAnError) {
  const auto run = runTool("/bin/sh", {"-c", "kill -9 $$"}, 20.0);
  ASSERT_FALSE(run);
  EXPECT_EQ(run.error(), (daemon::SystemError{204, "ended by signal 9"}));
}

TEST(DaemonToolTest, aToolThatTakesTooLongIsAskedToEnd) {
  macfake::letWaitsRunOut();
  const auto run = runTool("/bin/sleep", {"600"}, 2.0);
  ASSERT_FALSE(run);
  EXPECT_EQ(run.error().code, ETIMEDOUT);
  macfake::joinThreads();  // the process has ended
}

struct ProcessPinsTest : testing::Test {
  macfake::KernelProcess& process() { return macfake::kernel().processes.front(); }
  std::unique_ptr<daemon::PinnedProcess> pin() {
    auto& identity = macfake::kernel().add(42).identity;
    identity.pbi_ruid = 501;
    identity.pbi_uid = 502;
    identity.pbi_svuid = 503;
    identity.pbi_start_tvsec = 1'700'000'000;
    identity.pbi_start_tvusec = 7;
    return std::move(*ProcessPins().pin(42));
  }
};

TEST_F(ProcessPinsTest, aProcessHasItsUsers) {
  EXPECT_EQ(pin()->users(), (std::array<daemon::UserId, 4>{501, 502, 503, 502}));
}

TEST_F(ProcessPinsTest, aProcessIsResumedByTheContractsSignal) {
  EXPECT_TRUE(pin()->resume());
  EXPECT_EQ(macfake::signals().sent, Lines{"19 to 42"});
}

TEST_F(ProcessPinsTest, aNumberThatAnotherProcessHasByNowIsNotTouched) {
  const auto first = pin();
  process().identity.pbi_start_tvusec = 8;
  EXPECT_FALSE(first->isThere());
  const auto resumed = first->resume();
  ASSERT_FALSE(resumed);
  EXPECT_EQ(resumed.error().code, ESRCH);
  process().identity.pbi_start_tvusec = 7;
  process().identity.pbi_start_tvsec = 1'700'000'001;
  EXPECT_FALSE(first->isThere());
  EXPECT_EQ(macfake::signals().sent, Lines{});
}

TEST_F(ProcessPinsTest, aProcessThatEndsIsNotThere) {
  const auto first = pin();
  EXPECT_TRUE(first->isThere());
  macfake::kernel().processes.clear();
  EXPECT_FALSE(first->isThere());
  EXPECT_FALSE(first->users());
  EXPECT_FALSE(first->resume());
  const auto second = ProcessPins().pin(42);
  ASSERT_FALSE(second);
  EXPECT_EQ(second.error().code, ESRCH);
}

TEST_F(ProcessPinsTest, aSignalThatIsRefusedIsTheKernelsError) {
  const auto first = pin();
  macfake::signals().failure = EPERM;
  const auto resumed = first->resume();
  ASSERT_FALSE(resumed);
  EXPECT_EQ(resumed.error().code, EPERM);
}

TEST(ResponderTest, theResponderIsFoundByItsPathAndSignalled) {
  macfake::kernel().add(1).path = "/usr/sbin/mDNSResponder";
  macfake::kernel().add(40).path = "/tmp/mDNSResponder";
  macfake::kernel().add(41).path = "/usr/sbin/mDNSResponderHelper";
  macfake::kernel().add(42).path = "/usr/sbin/mDNSResponder";
  EXPECT_EQ(flushResponder(4.0).state, State::flushed);
  EXPECT_EQ(macfake::signals().sent, Lines{"1 to 42"});
}

TEST(ResponderTest, withoutAResponderThereIsNothingToFlush) {
  macfake::kernel().add(40).path = "/usr/sbin/other";
  EXPECT_EQ(flushResponder(4.0).state, State::absent);
  macfake::kernel().canList = false;
  EXPECT_EQ(flushResponder(4.0).state, State::absent);
  EXPECT_EQ(macfake::signals().sent, Lines{});
}

TEST(ResponderTest, aSignalThatIsRefusedIsAFailure) {
  macfake::kernel().add(42).path = "/usr/sbin/mDNSResponder";
  macfake::signals().failure = EPERM;
  const auto outcome = flushResponder(4.0);
  EXPECT_EQ(outcome.state, State::failed);
  EXPECT_EQ(outcome.error.code, EPERM);
}

TEST(DirectoryServiceTest, aToolThatIsMissingIsAFailure) {
  const auto outcome = flushDirectoryService(4.0);
  EXPECT_EQ(outcome.state, State::failed);
  EXPECT_EQ(outcome.error.code, ENOEXEC);
}

struct PostedWorkers final : daemon::Workers {
  void post(UniqueFunction<void()> work) override { posted.push_back(std::move(work)); }
  std::vector<UniqueFunction<void()>> posted;
};

TEST(WorkerDNSCacheTest, theCacheIsFlushedOnAWorkerAndAnsweredOnTheMainThread) {
  fakes::ManualScheduler scheduler;
  PostedWorkers workers;
  WorkerDNSCache cache(scheduler, workers, "cache", [](double seconds) {
    return daemon::DNSCache::Outcome{State::failed, {static_cast<std::int32_t>(seconds), "text"}};
  });
  std::optional<daemon::DNSCache::Outcome> outcome;
  cache.flush(4.0, OnceReply<daemon::DNSCache::Outcome>(
                       [&outcome](daemon::DNSCache::Outcome is) { outcome = std::move(is); }));
  EXPECT_EQ(cache.name(), "cache");
  ASSERT_EQ(workers.posted.size(), 1U);
  workers.posted[0]();
  EXPECT_FALSE(outcome);
  scheduler.runReady();
  ASSERT_TRUE(outcome);
  EXPECT_EQ(outcome->error, (daemon::SystemError{4, "text"}));
}

}  // namespace
}  // namespace vorli::machost
