#include "daemon/DaemonCommands.h"
#include "tests/daemon/DaemonFakes.h"

#include <stdexcept>

namespace vorli::daemon {
namespace {

const MoveOrder order{&helper::systemStartupFolders[0], "a.desktop", "a.desktop.vorli-disabled",
                      MoveOrder::Direction::putAway};

struct DaemonCommandsTest : testing::Test {
  fakes::ManualScheduler scheduler;
  FakeWorkers workers;
  FakeMemory memory{scheduler};
  FakeDNSCache cache{"cache", DNSCache::Outcome{DNSCache::Outcome::State::flushed, {}}};
  DNSFlush dns{scheduler, {&cache}};
  FakeProcesses processes;
  FakeFolders folders;
  DaemonCommands commands{scheduler, workers, {memory, dns, processes, folders}};
  std::vector<HelperReply> answers;

  OnceReply<HelperReply> reply() {
    return OnceReply<HelperReply>([this](HelperReply value) { answers.push_back(std::move(value)); });
  }
  void purge() { commands.purgeMemory(PermitForTests::of(1000), reply()); }
  void finishPurge() {
    workers.runOne();
    scheduler.runReady();
  }
};

TEST_F(DaemonCommandsTest, purgesOnAWorkerAndAnswersOnTheMainThread) {
  purge();
  ASSERT_EQ(workers.posted.size(), 1u);
  workers.runOne();
  EXPECT_TRUE(answers.empty());
  scheduler.runReady();
  EXPECT_EQ(answers.size(), 1u);
}

TEST_F(DaemonCommandsTest, aRequestDuringAPurgeGetsTheAnswerOfThatPurge) {
  purge();
  purge();
  purge();
  EXPECT_EQ(workers.posted.size(), 1u);
  finishPurge();
  ASSERT_EQ(answers.size(), 3u);
  EXPECT_EQ(answers[0], answers[2]);
}

TEST_F(DaemonCommandsTest, aPurgeOfTheLastFiveSecondsIsEnough) {
  purge();
  finishPurge();
  scheduler.advance(4.999);
  purge();
  EXPECT_EQ(answers.back(), (HelperReply{0, "Purged 4 s ago"}));
  EXPECT_TRUE(workers.posted.empty());
  scheduler.advance(0.001);
  purge();
  EXPECT_EQ(workers.posted.size(), 1u);
}

TEST_F(DaemonCommandsTest, aFailedPurgeIsReportedToTheNextRequestToo) {
  memory.pageCache = std::unexpected(SystemError{30, "Read-only file system"});
  purge();
  finishPurge();
  purge();
  EXPECT_EQ(answers.back().exitCode, 30);
  EXPECT_TRUE(workers.posted.empty());
}

TEST_F(DaemonCommandsTest, oneFlushServesAllRequestsDuringIt) {
  cache.outcome.reset();
  commands.flushDNS(PermitForTests::of(1000), reply());
  commands.flushDNS(PermitForTests::of(1001), reply());
  scheduler.advance(2.0);
  EXPECT_EQ(cache.limits.size(), 1u);
  EXPECT_EQ(answers.size(), 2u);
}

TEST_F(DaemonCommandsTest, aSecondFlushAsksTheCacheAgain) {
  commands.flushDNS(PermitForTests::of(1000), reply());
  scheduler.runReady();
  commands.flushDNS(PermitForTests::of(1000), reply());
  scheduler.runReady();
  EXPECT_EQ(cache.limits.size(), 2u);
}

TEST_F(DaemonCommandsTest, movesFilesOnAWorker) {
  commands.moveStartupItem(PermitForTests::of(1000), order, reply());
  workers.runOne();
  scheduler.runReady();
  EXPECT_EQ(answers, (std::vector<HelperReply>{{0, "Moved"}}));
}

TEST_F(DaemonCommandsTest, anExceptionOnAWorkerIsAnsweredAsAnInternalError) {
  folders.answer = [](const MoveOrder&) -> HelperReply { throw std::runtime_error("out of luck"); };
  commands.moveStartupItem(PermitForTests::of(1000), order, reply());
  workers.runOne();
  scheduler.runReady();
  EXPECT_EQ(answers, (std::vector<HelperReply>{{204, "Internal error: out of luck"}}));
}

}  // namespace
}  // namespace vorli::daemon
