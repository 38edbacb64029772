#include "polish/QuietPolish.h"
#include "tests/polish/PolishFixture.h"

#include <string>
#include <utility>
#include <vector>

namespace vorli {
namespace {

using Requests = std::vector<std::string>;
using Level = MemoryPressureLevel;

struct QuietPolishTest : PolishFixture {
  QuietPolishTest() { settings.autoClear.set(true); }

  void deliver(Level level) {
    MemorySnapshot sample;
    sample.totalBytes = 1;
    sample.pressureLevel = level;
    polish.checkPressure(sample);
    scheduler.runReady();
  }
  /// Returns the requests so far, and clears them.
  Requests taken() { return std::exchange(transport.requests, {}); }

  QuietPolish& polish = services.quietPolish;
};

const Requests wholePolish{"flushDNS", "purgeMemory"};

TEST_F(QuietPolishTest, runsUnderPressureOnly) {
  deliver(Level::normal);
  EXPECT_EQ(taken(), Requests{});
  EXPECT_EQ(settings.lastAutoRefresh(), std::nullopt);
  deliver(Level::warning);
  EXPECT_EQ(taken(), wholePolish);
}

TEST_F(QuietPolishTest, runsUnderCriticalPressureToo) {
  deliver(Level::critical);
  EXPECT_EQ(taken(), wholePolish);
}

TEST_F(QuietPolishTest, eitherSwitchSuffices) {
  settings.autoClear.set(false);
  settings.autoRefreshOnPressure.set(true);
  deliver(Level::warning);
  EXPECT_EQ(taken(), wholePolish);
}

TEST_F(QuietPolishTest, neverRunsWithBothSwitchesOff) {
  settings.autoClear.set(false);
  for (int tick = 0; tick < 100; ++tick) {
    deliver(Level::critical);
    scheduler.advance(15.0);
  }
  EXPECT_EQ(taken(), Requests{});
  EXPECT_EQ(settings.lastAutoRefresh(), std::nullopt);
  EXPECT_TRUE(tap.windows.empty());
}

TEST_F(QuietPolishTest, refusesThe299thSecondAndAcceptsThe300th) {
  deliver(Level::warning);
  EXPECT_EQ(settings.lastAutoRefresh(), calendar.now());
  taken();
  scheduler.advance(299.0);
  deliver(Level::warning);
  EXPECT_EQ(taken(), Requests{});
  scheduler.advance(1.0);
  deliver(Level::warning);
  EXPECT_EQ(taken(), wholePolish);
  EXPECT_EQ(settings.lastAutoRefresh(), calendar.now());
}

TEST_F(QuietPolishTest, runsOnceInEach300SecondsOfLastingPressure) {
  for (int tick = 0; tick < 61; ++tick) {  // 15 minutes, both ends included
    deliver(Level::warning);
    scheduler.advance(15.0);
  }
  EXPECT_EQ(transport.purgeMemory.requests, 4);
}

TEST_F(QuietPolishTest, theCooldownOutlivesTheProgram) {
  deliver(Level::warning);
  taken();
  AppSettings reloaded(store);
  QuietPolish next(scheduler, calendar, manager, monitor, reloaded, audio);
  MemorySnapshot sample;
  sample.pressureLevel = Level::critical;
  next.checkPressure(sample);
  scheduler.runReady();
  EXPECT_EQ(taken(), Requests{});
}

TEST_F(QuietPolishTest, aFailedPolishStartsTheCooldownToo) {
  transport.leadsToDaemon = false;
  deliver(Level::warning);
  EXPECT_TRUE(settings.lastAutoRefresh().has_value());
  transport.leadsToDaemon = true;
  deliver(Level::warning);
  EXPECT_EQ(taken(), Requests{});
}

TEST_F(QuietPolishTest, withoutTheHelperNothingIsRememberedAndItRunsOnceTheHelperIsThere) {
  setHelperStatus(2);
  deliver(Level::warning);
  EXPECT_EQ(taken(), Requests{});
  EXPECT_EQ(settings.lastAutoRefresh(), std::nullopt);
  EXPECT_TRUE(tap.windows.empty());
  setHelperStatus(1);
  deliver(Level::warning);
  EXPECT_EQ(taken(), wholePolish);
}

TEST_F(QuietPolishTest, playingSoundSparesThePurge) {
  tap.play({0.5F});
  deliver(Level::warning);
  EXPECT_EQ(tap.windows, std::vector{0.15});
  EXPECT_EQ(taken(), Requests{"flushDNS"});
}

// The work runs in a task; listening does not.
TEST_F(QuietPolishTest, listensAtTheSampleAndAfterTheCooldownHasBegun) {
  std::optional<Date> duringProbe;
  tap.duringWindow = [&](double window) {
    duringProbe = settings.lastAutoRefresh();
    scheduler.advanceClockOnly(window);
  };
  const auto delivered = calendar.now();
  MemorySnapshot sample;
  sample.pressureLevel = Level::warning;
  polish.checkPressure(sample);
  EXPECT_EQ(duringProbe, delivered);
  EXPECT_EQ(taken(), Requests{});
  tap.play({0.5F});  // too late
  scheduler.runReady();
  EXPECT_EQ(taken(), wholePolish);
  EXPECT_EQ(settings.lastAutoRefresh(), delivered);
}

TEST_F(QuietPolishTest, looksAtTheMachineAtTheEnd) {
  transport.flushDNS.delaySeconds = 1.0;
  transport.purgeMemory.delaySeconds = 2.0;
  const int reads = memory.statisticsReads;
  deliver(Level::warning);
  scheduler.advance(1.0 - frame);
  EXPECT_EQ(transport.requests, Requests{"flushDNS"});  // one after the other
  scheduler.advance(2.0);
  EXPECT_EQ(transport.requests, wholePolish);
  EXPECT_EQ(memory.statisticsReads, reads);
  scheduler.advance(frame + 1e-9);
  EXPECT_EQ(memory.statisticsReads, reads + 1);
}

TEST_F(QuietPolishTest, showsNothing) {
  deliver(Level::warning);
  scheduler.advance(20.0);
  EXPECT_FALSE(view->isReleasing);
  EXPECT_EQ(view->animatedProgress, 1.0);
  EXPECT_EQ(view->auroraClearTrigger.get(), 0);
  EXPECT_EQ(clearState.calmIntensity.get(), 0.0);
  EXPECT_EQ(closes, 0);
  EXPECT_TRUE(haptics.taps.empty());
  EXPECT_TRUE(popoverLines().empty());
}

TEST_F(QuietPolishTest, polishNowNeitherListensNorCoolsDown) {
  tap.play({0.5F});
  for (int press = 0; press < 2; ++press) {
    EXPECT_EQ(polish.polishNow(), QuietPolish::Start::started);
    EXPECT_EQ(taken(), Requests{});  // in its own task
    scheduler.runReady();
    EXPECT_EQ(taken(), wholePolish);
  }
  EXPECT_TRUE(tap.windows.empty());
  EXPECT_EQ(settings.lastAutoRefresh(), std::nullopt);

  deliver(Level::normal);
  settings.setLastAutoRefresh(Date{5.0});
  EXPECT_EQ(polish.polishNow(), QuietPolish::Start::started);
  scheduler.runReady();
  EXPECT_EQ(settings.lastAutoRefresh(), Date{5.0});
}

TEST_F(QuietPolishTest, polishNowLooksAtTheMachineAtTheEnd) {
  const int reads = memory.statisticsReads;
  EXPECT_EQ(polish.polishNow(), QuietPolish::Start::started);
  scheduler.runReady();
  EXPECT_EQ(memory.statisticsReads, reads + 1);
}

TEST_F(QuietPolishTest, polishNowWithoutTheHelperSaysSoAndDoesNothing) {
  for (const int status : {0, 2, 3, 9}) {
    setHelperStatus(status);
    EXPECT_EQ(polish.polishNow(), QuietPolish::Start::helperNotInstalled);
  }
  const int reads = memory.statisticsReads;
  scheduler.advance(20.0);
  EXPECT_EQ(taken(), Requests{});
  EXPECT_EQ(memory.statisticsReads, reads);
}

TEST_F(QuietPolishTest, aNotificationsPolishListensAfterTheFlush) {
  std::vector<Requests> duringProbe;
  tap.duringWindow = [&](double) { duringProbe.push_back(transport.requests); };
  const int reads = memory.statisticsReads;
  const auto done = start(polish.polishFromNotification());
  EXPECT_EQ(duringProbe, std::vector<Requests>{Requests{"flushDNS"}});
  EXPECT_EQ(taken(), wholePolish);
  EXPECT_EQ(memory.statisticsReads, reads + 1);
  EXPECT_FALSE(done.isRunning());
  EXPECT_EQ(settings.lastAutoRefresh(), std::nullopt);
}

TEST_F(QuietPolishTest, aNotificationsPolishSparesPlayingSound) {
  tap.play({0.5F});
  start(polish.polishFromNotification());
  EXPECT_EQ(taken(), Requests{"flushDNS"});
}

TEST_F(QuietPolishTest, aNotificationsPolishWithoutTheHelperDoesNothing) {
  setHelperStatus(2);
  const int reads = memory.statisticsReads;
  start(polish.polishFromNotification());
  EXPECT_EQ(taken(), Requests{});
  EXPECT_EQ(memory.statisticsReads, reads);
  EXPECT_TRUE(tap.windows.empty());
}

}  // namespace
}  // namespace vorli
