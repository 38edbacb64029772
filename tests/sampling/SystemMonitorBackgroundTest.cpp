#include "tests/sampling/SystemMonitorFixture.h"

#include <thread>
#include <utility>

namespace vorli {
namespace {

constexpr double idlePeriod = 15.001;  // slightly more, because sums of fractions are not exact

/// Work that ends at once on its own thread, and whose end the main loop receives late.
class QuickWork final : public ports::BackgroundWork {
 public:
  explicit QuickWork(Scheduler& scheduler) : scheduler_(scheduler) {}
  ~QuickWork() override { scheduler_.cancel(timer_); }

  void start(Work work, Work done) override {
    std::thread([&work] { work(); }).join();
    done_ = std::move(done);
    timer_ = scheduler_.after(seconds, [this] { finish(); });
  }
  bool isUnderWay() const override { return static_cast<bool>(done_); }
  void finish() override {
    scheduler_.cancel(timer_);
    if (auto done = std::exchange(done_, nullptr)) done();
  }
  void abandon() override {
    scheduler_.cancel(timer_);
    done_ = nullptr;
  }

  double seconds = 0.1;

 private:
  Scheduler& scheduler_;
  Work done_;
  Scheduler::TimerId timer_ = 0;
};

struct SystemMonitorBackgroundTest : SystemMonitorFixture {
  SystemMonitorBackgroundTest() {
    processes.add(1).taskInfo->residentBytes = 100;
    countTicks();
  }
  ~SystemMonitorBackgroundTest() override { monitor.reset(); }  // before `quick`, which may use it

  void countTicks() {
    ticks = monitor->lastUpdate.subscribeToChanges([this](Date) { ++tickCount; });
  }
  void workQuickly() {
    makeMonitor(quick);
    countTicks();
  }

  /// One tick on the main thread, in which listing the processes takes that long, and the timer.
  void startWithALookOf(double seconds) {
    setLook(seconds);
    monitor->refresh();
    monitor->restartTimer();
    tickCount = 0;
  }

  void setLook(double seconds) {
    processes.whenListed = [this, seconds] { scheduler.advanceClockOnly(seconds); };
  }

  std::vector<std::int32_t> largestPIDs() const { return pids(monitor->topMemoryHogs); }

  QuickWork quick{scheduler};
  Subscription ticks;
  int tickCount = 0;
};

TEST_F(SystemMonitorBackgroundTest, aLookThatIsQuickEnoughStaysOnTheMainThread) {
  startWithALookOf(SystemMonitor::longestOnMainThread - 0.001);
  scheduler.advance(idlePeriod);
  EXPECT_EQ(background.started, 0);
  EXPECT_EQ(tickCount, 1);
}

TEST_F(SystemMonitorBackgroundTest, afterASlowLookTheTimersNextOneIsTakenInTheBackground) {
  startWithALookOf(0.009);
  scheduler.advance(idlePeriod);
  EXPECT_EQ(background.started, 1);
  EXPECT_EQ(tickCount, 0);
  EXPECT_TRUE(background.isUnderWay());

  scheduler.advance(background.seconds);
  EXPECT_EQ(tickCount, 1);
  EXPECT_FALSE(background.isUnderWay());
}

TEST_F(SystemMonitorBackgroundTest, nothingIsPublishedBeforeTheWholeTickIs) {
  startWithALookOf(0.009);
  processes.add(2).taskInfo->residentBytes = 200;
  cpu.ticks = ports::CPUTicks{.user = 100, .idle = 100};
  const auto memoryBefore = monitor->memory.get();
  std::vector<std::string> published;
  const auto memorySeen = monitor->memory.subscribeToChanges([&](auto&) { published.push_back("memory"); });
  const auto hogsSeen =
      monitor->topMemoryHogs.subscribeToChanges([&](auto&) { published.push_back("topMemoryHogs"); });
  const auto timeSeen =
      monitor->lastUpdate.subscribeToChanges([&](auto&) { published.push_back("lastUpdate"); });
  const auto ringSeen =
      monitor->ringProgress.subscribeToChanges([&](auto&) { published.push_back("ringProgress"); });

  scheduler.advance(idlePeriod + background.seconds - 0.002);
  EXPECT_EQ(monitor->memory.get(), memoryBefore);
  EXPECT_TRUE(published.empty());

  scheduler.advance(0.002);
  EXPECT_EQ(published, (std::vector<std::string>{"memory", "topMemoryHogs", "lastUpdate", "ringProgress"}));
  EXPECT_EQ(largestPIDs(), (std::vector<std::int32_t>{2, 1}));
}

TEST_F(SystemMonitorBackgroundTest, aLookThatIsQuickAgainBringsTheTimerBackToTheMainThread) {
  startWithALookOf(0.009);
  setLook(0.002);
  scheduler.advance(idlePeriod + background.seconds);
  EXPECT_EQ(background.started, 1);
  scheduler.advance(idlePeriod);
  EXPECT_EQ(background.started, 1);
  EXPECT_EQ(tickCount, 2);
}

TEST_F(SystemMonitorBackgroundTest, refreshOutOfTurnIsSynchronousHoweverSlow) {
  startWithALookOf(0.5);
  monitor->refresh();
  EXPECT_EQ(background.started, 0);
  EXPECT_EQ(tickCount, 1);
}

TEST_F(SystemMonitorBackgroundTest, refreshOutOfTurnFinishesTheTickUnderWayBeforeItsOwn) {
  startWithALookOf(0.009);
  scheduler.advance(idlePeriod);
  ASSERT_TRUE(background.isUnderWay());
  std::vector<std::size_t> sizes;
  const auto seen =
      monitor->topMemoryHogs.subscribeToChanges([&](const auto& rows) { sizes.push_back(rows.size()); });
  const auto processAppears = monitor->lastUpdate.subscribeToChanges([&](Date) {
    if (tickCount == 1) processes.add(2);
  });

  monitor->refresh();
  EXPECT_EQ(tickCount, 2);
  EXPECT_EQ(sizes, (std::vector<std::size_t>{1, 2}));

  scheduler.advance(background.seconds);
  EXPECT_EQ(tickCount, 2);  // the tick that was in progress is not repeated
}

TEST_F(SystemMonitorBackgroundTest, eachOfTheTwoTicksMovesTheSmoothingByOneStep) {
  startWithALookOf(0.009);
  const double before = monitor->ringProgress;
  thermal.reading.systemState = 3;  // the target is 1.0
  scheduler.advance(idlePeriod);
  monitor->refresh();
  const double once = before * 0.45 + 0.55;
  EXPECT_NEAR(monitor->ringProgress, once * 0.45 + 0.55, 1e-12);
}

TEST_F(SystemMonitorBackgroundTest, aFiringDuringALookIsDroppedAndTheRhythmStays) {
  startWithALookOf(0.009);
  background.seconds = 20.0;
  scheduler.advance(31.0);  // two firings; the second one finds the first one's listing in progress
  EXPECT_EQ(background.started, 1);
  EXPECT_EQ(tickCount, 0);
  scheduler.advance(5.0);
  EXPECT_EQ(tickCount, 1);
  scheduler.advance(10.0);
  EXPECT_EQ(background.started, 2);
}

TEST_F(SystemMonitorBackgroundTest, aFinishedLookIsPublishedInItsTurnAndAsItWas) {
  workQuickly();
  startWithALookOf(0.009);
  processes.add(2).taskInfo->residentBytes = 200;
  scheduler.advance(idlePeriod);
  ASSERT_TRUE(quick.isUnderWay());
  processes.add(3).taskInfo->residentBytes = 300;  // after the look
  EXPECT_EQ(largestPIDs(), (std::vector<std::int32_t>{1}));

  scheduler.advance(quick.seconds);
  EXPECT_EQ(largestPIDs(), (std::vector<std::int32_t>{2, 1}));
  EXPECT_EQ(tickCount, 1);
}

TEST_F(SystemMonitorBackgroundTest, refreshOutOfTurnPublishesTheLookThatIsOverBeforeItsOwn) {
  workQuickly();
  startWithALookOf(0.009);
  processes.add(2);
  scheduler.advance(idlePeriod);
  ASSERT_TRUE(quick.isUnderWay());
  processes.add(3);
  std::vector<std::size_t> sizes;
  const auto seen =
      monitor->topMemoryHogs.subscribeToChanges([&](const auto& rows) { sizes.push_back(rows.size()); });

  monitor->refresh();
  EXPECT_EQ(sizes, (std::vector<std::size_t>{2, 3}));
  scheduler.advance(quick.seconds);
  EXPECT_EQ(sizes.size(), 2u);
}

TEST_F(SystemMonitorBackgroundTest, aSubscriberThatRefreshesInsideThePublishingGetsAWholeTickOfItsOwn) {
  startWithALookOf(0.009);
  scheduler.advance(idlePeriod);
  ASSERT_TRUE(background.isUnderWay());
  bool hasRefreshed = false;
  const auto refreshes = monitor->topMemoryHogs.subscribeToChanges([&](auto&) {
    if (std::exchange(hasRefreshed, true)) return;
    for (std::int32_t pid = 2; pid <= 500; ++pid) processes.add(pid);  // moves the rows to other memory
    monitor->refresh();
  });
  scheduler.advance(background.seconds);
  EXPECT_TRUE(hasRefreshed);
  EXPECT_EQ(tickCount, 2);
  EXPECT_FALSE(background.isUnderWay());
}

TEST_F(SystemMonitorBackgroundTest, aNewCadenceLeavesTheTickUnderWayAlone) {
  startWithALookOf(0.009);
  background.seconds = 1.0;
  scheduler.advance(idlePeriod);
  ASSERT_TRUE(background.isUnderWay());
  const double changed = scheduler.now();
  monitor->setCadence(MonitorCadence::active);
  EXPECT_EQ(tickCount, 0);

  scheduler.advanceTo(changed + 1.999);
  EXPECT_EQ(tickCount, 1);
  EXPECT_EQ(background.started, 1);
  scheduler.advanceTo(changed + 2.001);
  EXPECT_EQ(background.started, 2);
}

TEST_F(SystemMonitorBackgroundTest, aLookThatIsLongerThanThePeriodLosesFiringsAndNoMore) {
  monitor->setCadence(MonitorCadence::active);
  startWithALookOf(0.009);
  background.seconds = 4.5;
  scheduler.advance(13.0);  // looks begin at 2, 8 and 14
  EXPECT_EQ(background.started, 2);
  EXPECT_EQ(tickCount, 2);
  scheduler.advance(1.1);
  EXPECT_EQ(background.started, 3);
}

TEST_F(SystemMonitorBackgroundTest, aMachineThatSleepsDuringALookWakesToOneTickAndSensibleFractions) {
  constexpr double nanosecondsPerSecond = 1e9;
  workQuickly();
  startWithALookOf(0.009);
  scheduler.advance(idlePeriod);
  ASSERT_TRUE(quick.isUnderWay());
  calendar.advance(3600.0);  // the clock of timers stands still while the machine sleeps
  scheduler.advance(quick.seconds);
  EXPECT_EQ(tickCount, 1);
  EXPECT_EQ(monitor->lastUpdate.get(), calendar.now());

  processes.entry(1).taskInfo->totalUser = static_cast<std::uint64_t>(1800.0 * nanosecondsPerSecond);
  monitor->refresh();
  EXPECT_EQ(tickCount, 2);
  EXPECT_NEAR(monitor->topCPUHogs->front().cpuFraction, 0.5, 0.001);
}

TEST_F(SystemMonitorBackgroundTest, aTickUnderWayOutlivesItsTimer) {
  startWithALookOf(0.009);
  scheduler.advance(idlePeriod);
  monitor->stopTimer();
  scheduler.advance(background.seconds);
  EXPECT_EQ(tickCount, 1);
}

TEST_F(SystemMonitorBackgroundTest, destroyingTheMonitorDropsItsTick) {
  startWithALookOf(0.009);
  scheduler.advance(idlePeriod);
  ASSERT_TRUE(background.isUnderWay());
  monitor.reset();
  EXPECT_FALSE(background.isUnderWay());
  scheduler.advance(background.seconds);
  EXPECT_EQ(tickCount, 0);
}

TEST_F(SystemMonitorBackgroundTest, destroyingTheMonitorDropsAFinishedLookToo) {
  workQuickly();
  startWithALookOf(0.009);
  scheduler.advance(idlePeriod);
  ASSERT_TRUE(quick.isUnderWay());
  monitor.reset();
  EXPECT_FALSE(quick.isUnderWay());
  scheduler.advance(quick.seconds);
  EXPECT_EQ(tickCount, 0);
}

TEST_F(SystemMonitorBackgroundTest, applicationsThatEndDuringTheLookHaveTheirRowsOfItsStart) {
  workspace.applications = {{.processIdentifier = 1, .localizedName = SharedText("Editor")}};
  startWithALookOf(0.009);
  scheduler.advance(idlePeriod);
  workspace.applications.clear();
  scheduler.advance(background.seconds);
  ASSERT_EQ(monitor->topMemoryHogs->size(), 1u);
  EXPECT_EQ(monitor->topMemoryHogs->front().displayName, "Editor");
}

}  // namespace
}  // namespace vorli
