#include "base/RepeatingTimer.h"
#include "tests/fakes/ManualScheduler.h"

#include <optional>

namespace vorli {
namespace {

struct RepeatingTimerTest : testing::Test {
  void start(double period) {
    timer.emplace(scheduler, period, [this] { firings.push_back(scheduler.now() - origin); });
  }

  fakes::ManualScheduler scheduler;
  const double origin = scheduler.now();
  std::vector<double> firings;
  std::optional<RepeatingTimer> timer;
};

TEST_F(RepeatingTimerTest, firesFirstAfterOneWholePeriod) {
  start(2.0);
  EXPECT_EQ(timer->periodSeconds(), 2.0);
  scheduler.advance(1.999);
  EXPECT_TRUE(firings.empty());
  scheduler.advance(0.001);
  EXPECT_EQ(firings.size(), 1u);
  scheduler.advance(4.0);
  EXPECT_EQ(firings, (std::vector<double>{2.0, 4.0, 6.0}));
}

TEST_F(RepeatingTimerTest, aLateFiringKeepsTheRhythm) {
  start(2.0);
  scheduler.advanceClockOnly(3.5);
  scheduler.runReady();
  scheduler.advance(0.5);
  EXPECT_EQ(firings, (std::vector<double>{3.5, 4.0}));
}

TEST_F(RepeatingTimerTest, firingsMissedByABusyLoopAreDropped) {
  start(2.0);
  scheduler.advanceClockOnly(9.0);
  scheduler.runReady();
  EXPECT_EQ(firings, std::vector<double>{9.0});
  scheduler.advance(1.0);
  EXPECT_EQ(firings, (std::vector<double>{9.0, 10.0}));
}

TEST_F(RepeatingTimerTest, aFiringThatIsAWholePeriodLateReplacesTheOneDueNow) {
  start(2.0);
  scheduler.advanceClockOnly(4.0);
  scheduler.runReady();
  EXPECT_EQ(firings, std::vector<double>{4.0});
  scheduler.advance(2.0);
  EXPECT_EQ(firings, (std::vector<double>{4.0, 6.0}));
}

TEST_F(RepeatingTimerTest, aDestroyedTimerNoLongerFires) {
  start(2.0);
  scheduler.advance(2.0);
  timer.reset();
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  scheduler.advance(10.0);
  EXPECT_EQ(firings.size(), 1u);
}

TEST_F(RepeatingTimerTest, mayBeDestroyedInItsOwnFiring) {
  int calls = 0;
  timer.emplace(scheduler, 1.0, [this, &calls, sentinel = std::make_shared<int>(7)] {
    timer.reset();
    calls += *sentinel;
  });
  scheduler.advance(10.0);
  EXPECT_EQ(calls, 7);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(RepeatingTimerTest, mayBeReplacedInItsOwnFiring) {
  timer.emplace(scheduler, 1.0, [this] { start(3.0); });
  scheduler.advance(1.0);
  scheduler.advance(2.999);
  EXPECT_TRUE(firings.empty());
  scheduler.advance(0.001);
  EXPECT_EQ(firings.size(), 1u);
}

TEST_F(RepeatingTimerTest, aFiringInsideItsOwnFiringIsDropped) {
  int calls = 0;
  timer.emplace(scheduler, 1.0, [this, &calls] {
    if (++calls == 1) scheduler.advance(2.5);
  });
  scheduler.advance(1.0);
  EXPECT_EQ(calls, 1);
  scheduler.advance(0.5);  // at 4.0
  EXPECT_EQ(calls, 2);
}

TEST_F(RepeatingTimerTest, mayBeDestroyedInANestedLoopOfItsFiring) {
  int calls = 0;
  timer.emplace(scheduler, 1.0, [this, &calls] {
    ++calls;
    scheduler.advance(2.5);
    timer.reset();
  });
  scheduler.advance(10.0);
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace vorli
