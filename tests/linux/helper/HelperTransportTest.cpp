#include "tests/linux/helper/ClientFixture.h"

#include <cstdio>
#include <vector>

namespace vorli {
namespace {

using namespace std::chrono_literals;

constexpr const char* died = "Message recipient disconnected from message bus without replying";

struct HelperTransportTest : ClientFixture {
  void startOnScriptedHelper() {
    bus.installScriptedHelper();
    bus.start();
    startClient();
  }

  /// Waits for a call and checks that it ended at its limit: never early, and late only by the machine's
  /// load.
  template <typename T>
  void expectEndAtLimit(const std::shared_ptr<Outcome<T>>& outcome, double begun, double limit,
                        const T& value) {
    waitUntil([&] { return outcome->resumes > 0; }, 30s);
    EXPECT_EQ(outcome->value, value);
    EXPECT_EQ(outcome->resumes, 1);
    EXPECT_GE(outcome->at - begun, limit);
    EXPECT_LT(outcome->at - begun, limit + loadSeconds);
    std::printf("limit %.0f s: ended after %.4f s\n", limit, outcome->at - begun);
  }

  void expectSteadyBeat() {
    EXPECT_LT(client->beat.longestGap(), loadSeconds);
    std::printf("longest gap of the beat: %.1f ms\n", client->beat.longestGap() * 1e3);
  }
};

TEST_F(HelperTransportTest, everyCallReachesTheDaemonAndComesBack) {
  bus.setHelper("purge_code 5\npurge no right\nflush flushed\n");
  startOnScriptedHelper();
  EXPECT_TRUE(ping());
  EXPECT_EQ(resultOf(manager().versionWithTimeout(20.0)), "1.2.3");
  EXPECT_EQ(resultOf(manager().purgeMemory()), (HelperReply{5, "no right"}));
  EXPECT_EQ(resultOf(manager().flushDNS()), (HelperReply{0, "flushed"}));
  EXPECT_EQ(resultOf(manager().killPID(42, 19)), (HelperReply{0, "done"}));
  EXPECT_EQ(resultOf(manager().moveLaunchAgentPlist("/a", "/b")), (HelperReply{0, "done"}));
  EXPECT_TRUE(isNoted(bus.helperLog(), "kill 42 19"));
  EXPECT_TRUE(isNoted(bus.helperLog(), "move /a /b"));
  EXPECT_EQ(log.count("Opening new XPC connection to com.kv.vorli.helper (service status: <private>)"), 1);
}

TEST_F(HelperTransportTest, aSlowPurgeDoesNotDelayAPing) {
  bus.setHelper("purge_ms 6000\n");
  startOnScriptedHelper();
  const auto purge = start(manager().purgeMemory());
  EXPECT_TRUE(ping());
  EXPECT_EQ(purge->resumes, 0);
  waitUntil([&] { return purge->resumes > 0; });
  EXPECT_EQ(purge->value, (HelperReply{0, "done"}));
}

// The thread has not even connected when the question comes.
TEST_F(HelperTransportTest, theVeryFirstCallIsNotRefused) {
  startOnScriptedHelper();
  const auto first = start(manager().purgeMemory());
  waitUntil([&] { return first->resumes > 0; });
  EXPECT_EQ(first->value, (HelperReply{0, "done"}));
}

TEST_F(HelperTransportTest, aDaemonKilledDuringAPurgeIsReportedAndRestartedAndThePurgeEndsAtItsLimit) {
  bus.setHelper("purge_ms -1\n");
  startOnScriptedHelper();
  const double begun = client->scheduler.now();
  const auto purge = start(manager().purgeMemory());
  waitUntil([&] { return isNoted(bus.helperLog(), "purge"); });
  bus.signalHelper(SIGKILL);
  waitUntil([&] { return isLogged("XPC connection invalidated"); });
  EXPECT_EQ(log.count(std::string("XPC proxy error: ") + died), 1);
  EXPECT_EQ(log.count("XPC connection interrupted"), 1);
  EXPECT_EQ(log.count("XPC connection invalidated"), 1);
  EXPECT_EQ(manager().lastError.get(), "Helper connection invalidated.");
  EXPECT_EQ(purge->resumes, 0);

  EXPECT_TRUE(ping());
  expectEndAtLimit(purge, begun, 20.0, HelperReply{-1, "Helper purgeMemory timed out"});
  EXPECT_EQ(log.count("purgeMemory: XPC reply timed out after 20s"), 1);
  expectSteadyBeat();
}

TEST_F(HelperTransportTest, everyCallToAStoppedDaemonEndsAtItsOwnLimit) {
  startOnScriptedHelper();
  ASSERT_TRUE(ping());
  bus.signalHelper(SIGSTOP);
  const double begun = client->scheduler.now();
  const auto purge = start(manager().purgeMemory());
  const auto flush = start(manager().flushDNS());
  const auto kill = start(manager().killPID(42, 19));
  const auto move = start(manager().moveLaunchAgentPlist("/a", "/b"));
  const auto alive = start(manager().pingWithTimeout(2.0));
  const auto version = start(manager().versionWithTimeout(2.0));
  expectEndAtLimit(alive, begun, 2.0, false);
  expectEndAtLimit(version, begun, 2.0, std::string("unknown"));
  expectEndAtLimit(move, begun, 4.0, HelperReply{-1, "Helper moveLaunchAgentPlist timed out"});
  expectEndAtLimit(flush, begun, 5.0, HelperReply{-1, "Helper flushDNS timed out"});
  expectEndAtLimit(kill, begun, 10.0, HelperReply{-1, "Helper killPID timed out"});
  expectEndAtLimit(purge, begun, 20.0, HelperReply{-1, "Helper purgeMemory timed out"});
  expectSteadyBeat();

  // All six are answered now, and nobody receives the answers.
  const auto lines = log.lines().size();
  bus.signalHelper(SIGCONT);
  EXPECT_TRUE(ping());
  EXPECT_EQ(log.lines().size(), lines + 1);  // the connection is reused
}

TEST_F(HelperTransportTest, repliesAroundTheLimitLeaveOneResumeAndAreNeverEarly) {
  startOnScriptedHelper();
  constexpr double limit = 0.3;
  constexpr int rounds = 10, atOnce = 50;
  for (int round = 0; round < rounds; ++round) {
    bus.setHelper(round % 2 == 0 ? "ping_ms 290\n" : "ping_ms 310\n");
    std::vector<std::shared_ptr<Outcome<bool>>> outcomes;
    const double begun = client->scheduler.now();
    for (int i = 0; i < atOnce; ++i) outcomes.push_back(start(manager().pingWithTimeout(limit)));
    waitUntil([&] { return std::ranges::all_of(outcomes, [](const auto& o) { return o->resumes > 0; }); });
    waitUntil([&] { return client->scheduler.now() > begun + 0.5; });
    for (const auto& outcome : outcomes) {
      EXPECT_EQ(outcome->resumes, 1);
      EXPECT_LT(outcome->at - begun, limit + loadSeconds);
      EXPECT_TRUE(*outcome->value || outcome->at - begun >= limit);
    }
  }
}

TEST_F(HelperTransportTest, aReplyOfAnotherTypeIsAnError) {
  bus.setHelper("version_is_a_number 1\n");
  startOnScriptedHelper();
  const double begun = client->scheduler.now();
  const auto version = start(manager().versionWithTimeout(2.0));
  waitUntil([&] { return isLogged("XPC connection invalidated"); });
  EXPECT_TRUE(std::ranges::any_of(log.messages(),
                                  [](const auto& line) { return line.starts_with("XPC proxy error: "); }));
  expectEndAtLimit(version, begun, 2.0, std::string("unknown"));

  // The next daemon follows the contract again.
  bus.setHelper("");
  const auto former = bus.ownerProcess("com.kv.vorli.helper");
  bus.signalHelper(SIGKILL);
  waitUntil([&] { return bus.ownerProcess("com.kv.vorli.helper") != former; });
  EXPECT_EQ(resultOf(manager().versionWithTimeout(20.0)), "1.2.3");
}

TEST_F(HelperTransportTest, aHugeReplyDelaysNothing) {
#if defined(__SANITIZE_THREAD__)
  constexpr int bytes = 3'000'000;  // each byte takes a hundred times as long there
#else
  constexpr int bytes = 30'000'000;
#endif
  bus.setHelper("purge_bytes " + std::to_string(bytes) + "\n");
  startOnScriptedHelper();
  const auto purge = start(manager().purgeMemory());
  waitUntil([&] { return purge->resumes > 0; });
  EXPECT_EQ(purge->value->output.size(), static_cast<std::size_t>(bytes));
  expectSteadyBeat();
  EXPECT_TRUE(ping());
}

TEST_F(HelperTransportTest, aDaemonWhoseProgramIsGoneFailsTheCallsWhichEndAtTheirLimits) {
  bus.installScriptedHelper();
  std::filesystem::remove(bus.folder() / "scripted_helper");
  bus.start();
  startClient();
  const double begun = client->scheduler.now();
  const auto alive = start(manager().pingWithTimeout(2.0));
  expectEndAtLimit(alive, begun, 2.0, false);
  waitUntil([&] { return isLogged("XPC connection invalidated"); });  // the bus is slow to say why
  EXPECT_TRUE(std::ranges::any_of(log.messages(), [](const auto& line) {
    return line.starts_with("XPC proxy error: Failed to execute");
  }));
  EXPECT_EQ(log.count("XPC connection interrupted"), 0);
  EXPECT_EQ(log.count("XPC connection invalidated"), 1);
}

TEST_F(HelperTransportTest, aDaemonThatIsNotInstalledHasNoProxyUntilItIs) {
  bus.start();
  startClient();
  waitForStatus(3);
  EXPECT_EQ(resultOf(manager().purgeMemory()), (HelperReply{-1, "No helper connection"}));
  EXPECT_EQ(log.count("purgeMemory: no helper proxy available"), 1);

  bus.installScriptedHelper();
  bus.reload();
  waitUntil([&] { return client->watch->mayLeadToDaemon(); });
  EXPECT_TRUE(ping());
}

TEST_F(HelperTransportTest, withoutABusCallsReturnAtOnce) {
  startClient();
  waitForStatus(100);
  const double begun = client->scheduler.now();
  EXPECT_FALSE(ping());
  EXPECT_EQ(resultOf(manager().flushDNS()), (HelperReply{-1, "No helper connection"}));
  EXPECT_LT(client->scheduler.now() - begun, loadSeconds);
}

TEST_F(HelperTransportTest, aBusThatStartsLaterIsFound) {
  startClient();
  waitForStatus(100);
  bus.installScriptedHelper();
  bus.start();
  waitUntil([&] {
    client->service.status();
    return client->watch->mayLeadToDaemon();
  });
  EXPECT_TRUE(ping());
}

TEST_F(HelperTransportTest, aBusKilledDuringAFlushIsReportedAndTheFlushEndsAtItsLimit) {
  bus.setHelper("flush_ms -1\n");
  startOnScriptedHelper();
  const double begun = client->scheduler.now();
  const auto flush = start(manager().flushDNS());
  waitUntil([&] { return isNoted(bus.helperLog(), "flush"); });
  bus.kill();
  waitUntil([&] { return isLogged("XPC connection invalidated"); });
  EXPECT_EQ(log.count("XPC connection interrupted"), 0);
  EXPECT_EQ(log.count("XPC connection invalidated"), 1);
  waitForStatus(100);
  expectEndAtLimit(flush, begun, 5.0, HelperReply{-1, "Helper flushDNS timed out"});
  expectSteadyBeat();

  bus.start();
  waitUntil([&] {
    client->service.status();
    return client->watch->mayLeadToDaemon();
  });
  EXPECT_TRUE(ping());
}

TEST_F(HelperTransportTest, aStoppedBusDelaysNothingButItsOwnAnswers) {
  startOnScriptedHelper();
  ASSERT_TRUE(ping());
  bus.daemon().stop();
  const double begun = client->scheduler.now();
  const auto move = start(manager().moveLaunchAgentPlist("/a", "/b"));
  const auto alive = start(manager().pingWithTimeout(2.0));
  manager().refreshStatus();
  expectEndAtLimit(alive, begun, 2.0, false);
  expectEndAtLimit(move, begun, 4.0, HelperReply{-1, "Helper moveLaunchAgentPlist timed out"});
  expectSteadyBeat();
  bus.daemon().carryOn();
  EXPECT_TRUE(ping());
}

TEST_F(HelperTransportTest, aBusThatNeverAnswersTheGreetingDelaysNothingNotEvenTheEnd) {
  bus.installScriptedHelper();
  bus.start();
  bus.daemon().stop();
  startClient();
  const double begun = client->scheduler.now();
  const auto alive = start(manager().pingWithTimeout(2.0));
  const auto version = start(manager().versionWithTimeout(2.0));
  expectEndAtLimit(alive, begun, 2.0, false);
  expectEndAtLimit(version, begun, 2.0, std::string("unknown"));
  expectSteadyBeat();

  ui::QtScheduler clock;
  const double end = clock.now();
  client.reset();
  EXPECT_LT(clock.now() - end, loadSeconds);
}

TEST_F(HelperTransportTest, theProgramEndsAtOnceWhileTheBusHangs) {
  startOnScriptedHelper();
  ASSERT_TRUE(ping());
  bus.daemon().stop();
  start(manager().purgeMemory());
  manager().refreshStatus();
  waitUntil([&] { return isLogged("purgeMemory requested"); });
  ui::QtScheduler clock;
  const double end = clock.now();
  client.reset();
  EXPECT_LT(clock.now() - end, loadSeconds);
}

// It releases its name first and answers the pending calls. This is no death, although the name has no owner.
TEST_F(HelperTransportTest, aDaemonThatGoesIdleDuringACallCausesNoInterruption) {
  bus.setHelper("purge_ms 300\nrelease_on_purge 1\n");
  startOnScriptedHelper();
  EXPECT_EQ(resultOf(manager().purgeMemory()), (HelperReply{0, "done"}));
  EXPECT_EQ(log.count("XPC connection interrupted"), 0);
  EXPECT_EQ(log.count("XPC connection invalidated"), 0);
}

TEST_F(HelperTransportTest, aRepairDropsTheConnectionAndTheNextCallOpensAnother) {
  startOnScriptedHelper();
  bus.startAuthority("polkit");
  waitForStatus(1);
  ASSERT_TRUE(ping());
  const auto handle = client->tasks.spawn(manager().reinstallIfStale(Reinstall::forced));
  waitUntil([&] { return !handle.isRunning(); });
  EXPECT_EQ(log.count("XPC connection invalidated"), 1);
  EXPECT_EQ(log.count("Post-reinstall liveness: status=Enabled alive=true force=true"), 1);
  EXPECT_EQ(manager().lastError.get(), std::nullopt);
}

}  // namespace
}  // namespace vorli
