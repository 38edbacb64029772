#include "tests/helper/HelperFixture.h"

#include <thread>

namespace vorli {
namespace {

struct HelperCallsTest : HelperFixture {
  void makeEverySilent() { transport.setConduct(Conduct::silent); }
};

TEST_F(HelperCallsTest, anyReplyCountsAsAlive) {
  for (const char* text : {"alive", ""}) {
    transport.ping.answer = text;
    EXPECT_EQ(start(manager->pingWithTimeout(2.0))->value, true);
  }
}

TEST_F(HelperCallsTest, aSilentPingIsDeadAtItsLimitAndNotBefore) {
  makeEverySilent();
  const auto outcome = start(manager->pingWithTimeout(HelperTimings::ping));
  scheduler.advance(2.0 - frame);
  EXPECT_EQ(outcome->resumes, 0);
  scheduler.advance(frame);
  EXPECT_EQ(outcome->value, false);
}

TEST_F(HelperCallsTest, theLimitOfAPingIsTheCallers) {
  makeEverySilent();
  const auto outcome = start(manager->pingWithTimeout(0.5));
  scheduler.advance(0.5);
  EXPECT_EQ(outcome->value, false);
}

TEST_F(HelperCallsTest, versionIsReturnedUnchanged) {
  for (const char* text : {"1.2.3", "1.2.3 ", "1.2.30", ""}) {
    transport.version.answer = text;
    EXPECT_EQ(start(manager->versionWithTimeout(2.0))->value, text);
  }
}

TEST_F(HelperCallsTest, aSilentVersionIsUnknownAtItsLimitAndNotBefore) {
  makeEverySilent();
  const auto outcome = start(manager->versionWithTimeout(HelperTimings::version));
  scheduler.advance(2.0 - frame);
  EXPECT_EQ(outcome->resumes, 0);
  scheduler.advance(frame);
  EXPECT_EQ(outcome->value, "unknown");
}

TEST_F(HelperCallsTest, withoutAProxyEveryCallReturnsAtOnce) {
  transport.leadsToDaemon = false;
  EXPECT_EQ(start(manager->pingWithTimeout(2.0))->value, false);
  EXPECT_EQ(start(manager->versionWithTimeout(2.0))->value, "unknown");
  const HelperReply none{-1, "No helper connection"};
  EXPECT_EQ(start(manager->purgeMemory())->value, none);
  EXPECT_EQ(start(manager->flushDNS())->value, none);
  EXPECT_EQ(start(manager->killPID(42, 19))->value, none);
  EXPECT_EQ(start(manager->moveLaunchAgentPlist("/a", "/b"))->value, none);
  EXPECT_TRUE(transport.requests.empty());
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(HelperCallsTest, withoutAProxyOnlyPurgeAndFlushSaySo) {
  transport.leadsToDaemon = false;
  start(manager->pingWithTimeout(2.0));
  log.clear();
  start(manager->versionWithTimeout(2.0));
  start(manager->killPID(42, 19));
  start(manager->moveLaunchAgentPlist("/a", "/b"));
  EXPECT_EQ(log.count("Reusing existing XPC connection to helper"), 3);
  EXPECT_EQ(log.lines().size(), 3u);

  log.clear();
  start(manager->purgeMemory());
  start(manager->flushDNS());
  EXPECT_EQ(log.messages(),
            (std::vector<std::string>{"purgeMemory requested", "Reusing existing XPC connection to helper",
                                      "purgeMemory: no helper proxy available", "flushDNS requested",
                                      "Reusing existing XPC connection to helper",
                                      "flushDNS: no helper proxy available"}));
  EXPECT_EQ(errors("purgeMemory: no helper proxy available"), 1);
  EXPECT_EQ(errors("flushDNS: no helper proxy available"), 1);
}

TEST_F(HelperCallsTest, requestsCarryTheirArguments) {
  start(manager->pingWithTimeout(2.0));
  start(manager->versionWithTimeout(2.0));
  start(manager->purgeMemory());
  start(manager->flushDNS());
  start(manager->killPID(42, 19));
  start(manager->moveLaunchAgentPlist("/etc/a", "/etc/a.vorli-disabled"));
  EXPECT_EQ(transport.requests,
            (std::vector<std::string>{"ping", "version", "purgeMemory", "flushDNS", "killPID 42 19",
                                      "moveLaunchAgentPlist /etc/a /etc/a.vorli-disabled"}));
}

TEST_F(HelperCallsTest, purgeAndFlushLogTheirRequestAndTheirReply) {
  transport.purgeMemory.answer = {5, "no right"};
  EXPECT_EQ(start(manager->purgeMemory())->value, (HelperReply{5, "no right"}));
  EXPECT_EQ(notices("purgeMemory requested"), 1);
  EXPECT_EQ(notices("purgeMemory reply: exit=5 output=no right"), 1);

  EXPECT_EQ(start(manager->flushDNS())->value, (HelperReply{0, "flushed"}));
  EXPECT_EQ(notices("flushDNS requested"), 1);
  EXPECT_EQ(notices("flushDNS reply: exit=0 output=flushed"), 1);
}

TEST_F(HelperCallsTest, theOtherRepliesAreNotLogged) {
  start(manager->pingWithTimeout(2.0));
  log.clear();
  transport.killPID.answer = {3, "process is gone"};
  transport.moveLaunchAgentPlist.answer = {17, "exists"};
  EXPECT_EQ(start(manager->killPID(42, 19))->value, (HelperReply{3, "process is gone"}));
  EXPECT_EQ(start(manager->moveLaunchAgentPlist("/a", "/b"))->value, (HelperReply{17, "exists"}));
  start(manager->versionWithTimeout(2.0));
  EXPECT_EQ(log.lines().size(), 3u);
  EXPECT_EQ(log.count("Reusing existing XPC connection to helper"), 3);
}

/// One row of the table of timed calls.
struct TimedCall {
  const char* name;
  double limit;
  Task<HelperReply> (*call)(HelperManager&);
  fakes::HelperTransport::Method<HelperReply> fakes::HelperTransport::*method;
  HelperReply timeout;
  const char* timeoutLine;
  bool logsReply;

  friend void PrintTo(const TimedCall& row, std::ostream* out) { *out << row.name; }
};

struct TimedCallTest : HelperFixture, testing::WithParamInterface<TimedCall> {
  auto& method() { return transport.*GetParam().method; }
  auto begin() { return start(GetParam().call(*manager)); }
  int replyLines() const {
    return static_cast<int>(
        std::ranges::count_if(log.messages(), [](const auto& line) { return line.contains("reply: "); }));
  }
};

TEST_P(TimedCallTest, silenceEndsAtTheLimitAndNotOneFrameBefore) {
  method().conduct = Conduct::silent;
  const double begun = scheduler.now();
  const auto outcome = begin();
  scheduler.advance(GetParam().limit - frame);
  EXPECT_EQ(outcome->resumes, 0);
  EXPECT_EQ(errors(GetParam().timeoutLine), 0);
  scheduler.advance(frame);
  EXPECT_EQ(outcome->value, GetParam().timeout);
  EXPECT_DOUBLE_EQ(outcome->at, begun + GetParam().limit);
  EXPECT_EQ(errors(GetParam().timeoutLine), 1);
}

TEST_P(TimedCallTest, aReplyOneFrameBeforeTheLimitWinsAndTheTimerIsSilent) {
  method().answer = {4, "so it is"};
  method().delaySeconds = GetParam().limit - frame;
  const auto outcome = begin();
  scheduler.advance(GetParam().limit - frame);
  EXPECT_EQ(outcome->value, (HelperReply{4, "so it is"}));
  const auto lines = log.lines();
  EXPECT_EQ(replyLines(), GetParam().logsReply ? 1 : 0);
  scheduler.advance(60.0);
  EXPECT_EQ(outcome->resumes, 1);
  EXPECT_EQ(log.lines(), lines);
}

TEST_P(TimedCallTest, aReplyOneFrameAfterTheLimitIsDroppedSilently) {
  method().delaySeconds = GetParam().limit + frame;
  const auto outcome = begin();
  scheduler.advance(GetParam().limit);
  const auto lines = log.lines();
  scheduler.advance(60.0);
  EXPECT_EQ(outcome->value, GetParam().timeout);
  EXPECT_EQ(outcome->resumes, 1);
  EXPECT_EQ(log.lines(), lines);
}

TEST_P(TimedCallTest, onTheLimitTheFirstOfThemWins) {
  method().conduct = Conduct::silent;
  const auto timed = begin();
  scheduler.advance(GetParam().limit);
  std::move(method().held[0])({0, "late"});
  scheduler.runReady();
  EXPECT_EQ(timed->value, GetParam().timeout);
  EXPECT_EQ(timed->resumes, 1);

  const auto replied = begin();
  scheduler.advanceClockOnly(GetParam().limit);
  std::move(method().held[1])({0, "just in time"});
  scheduler.runReady();
  EXPECT_EQ(replied->value, (HelperReply{0, "just in time"}));
  EXPECT_EQ(replied->resumes, 1);
  EXPECT_EQ(errors(GetParam().timeoutLine), 1);
}

TEST_P(TimedCallTest, aReplyFromAnotherThreadAgainstTheTimerLeavesOneResume) {
  method().conduct = Conduct::silent;
  for (int round = 0; round < 50; ++round) {
    const auto outcome = begin();
    scheduler.advance(GetParam().limit - frame);
    std::thread daemon([&, reply = std::move(method().held.back())]() mutable {
      std::move(reply)({0, "from far"});
    });
    scheduler.advance(frame);
    daemon.join();
    scheduler.advance(1.0);
    EXPECT_EQ(outcome->resumes, 1);
    EXPECT_TRUE(outcome->value == GetParam().timeout || outcome->value == (HelperReply{0, "from far"}));
  }
}

TEST_P(TimedCallTest, aProxyErrorDoesNotEndTheCallTheTimerDoes) {
  method().conduct = Conduct::fails;
  const auto outcome = begin();
  scheduler.advance(GetParam().limit - frame);
  EXPECT_EQ(outcome->resumes, 0);
  EXPECT_EQ(errors("XPC proxy error: Couldn't communicate with a helper application."), 1);
  scheduler.advance(frame);
  EXPECT_EQ(outcome->value, GetParam().timeout);
}

TEST_P(TimedCallTest, aBlockedMainThreadDelaysTheTimerAndNothingIsEarly) {
  method().conduct = Conduct::silent;
  const auto outcome = begin();
  scheduler.advanceClockOnly(GetParam().limit + 3.0);
  EXPECT_EQ(outcome->resumes, 0);
  scheduler.runReady();
  EXPECT_EQ(outcome->value, GetParam().timeout);
}

INSTANTIATE_TEST_SUITE_P(
    AllCalls, TimedCallTest,
    testing::Values(TimedCall{"purgeMemory",
                              20.0,
                              [](HelperManager& manager) { return manager.purgeMemory(); },
                              &fakes::HelperTransport::purgeMemory,
                              {-1, "Helper purgeMemory timed out"},
                              "purgeMemory: XPC reply timed out after 20s",
                              true},
                    TimedCall{"flushDNS",
                              5.0,
                              [](HelperManager& manager) { return manager.flushDNS(); },
                              &fakes::HelperTransport::flushDNS,
                              {-1, "Helper flushDNS timed out"},
                              "flushDNS: XPC reply timed out after 5s",
                              true},
                    TimedCall{"killPID",
                              10.0,
                              [](HelperManager& manager) { return manager.killPID(42, 19); },
                              &fakes::HelperTransport::killPID,
                              {-1, "Helper killPID timed out"},
                              "killPID: XPC reply timed out after 10s (pid=42)",
                              false},
                    TimedCall{"moveLaunchAgentPlist",
                              4.0,
                              [](HelperManager& manager) { return manager.moveLaunchAgentPlist("/a", "/b"); },
                              &fakes::HelperTransport::moveLaunchAgentPlist,
                              {-1, "Helper moveLaunchAgentPlist timed out"},
                              "moveLaunchAgentPlist: XPC reply timed out after 4s",
                              false}),
    [](const auto& row) { return row.param.name; });

TEST_F(HelperCallsTest, concurrentCallsShareTheConnectionAndEndSeparately) {
  transport.purgeMemory.delaySeconds = 3.0;
  const auto purge = start(manager->purgeMemory());
  const auto flush = start(manager->flushDNS());
  EXPECT_EQ(flush->value, (HelperReply{0, "flushed"}));
  EXPECT_EQ(purge->resumes, 0);
  scheduler.advance(3.0);
  EXPECT_EQ(purge->value, (HelperReply{0, "purged"}));
  EXPECT_EQ(transport.connectionsOpened(), 1);
}

}  // namespace
}  // namespace vorli
