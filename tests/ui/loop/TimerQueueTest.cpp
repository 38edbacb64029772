#include "ui/loop/TimerQueue.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace vorli::ui {
namespace {

using Precision = Scheduler::Precision;

struct TimerQueueTest : testing::Test {
  TimerQueue queue;
  std::string ran;

  Scheduler::TimerId add(double now, double seconds, std::string name,
                         Precision precision = Precision::exact) {
    return queue.add(
        now, seconds, [this, name] { ran += name; }, precision);
  }
  void wakeAt(double now) {
    const auto newest = queue.newest();
    while (auto work = queue.takeDue(now, newest)) (*work)();
  }
};

TEST_F(TimerQueueTest, emptyQueueSchedulesNoWakeUp) {
  EXPECT_EQ(queue.nextWake(), std::nullopt);
  wakeAt(1e9);
  EXPECT_EQ(ran, "");
}

TEST_F(TimerQueueTest, runsInOrderOfTimeAndThenOfArrival) {
  add(10.0, 3.0, "c");
  add(10.0, 1.0, "a");
  add(11.0, 2.0, "d");
  add(10.0, 2.0, "b");
  EXPECT_EQ(queue.nextWake(), 11.0);
  wakeAt(13.0);
  EXPECT_EQ(ran, "abcd");
}

TEST_F(TimerQueueTest, nothingRunsEarly) {
  add(10.0, 1.0, "a");
  wakeAt(10.9999);
  EXPECT_EQ(ran, "");
  wakeAt(11.0);
  EXPECT_EQ(ran, "a");
}

TEST_F(TimerQueueTest, anExactDelayIsNotRounded) {
  add(10.0, 1.0 / 60.0, "frame");
  EXPECT_EQ(queue.nextWake(), 10.0 + 1.0 / 60.0);
  wakeAt(10.0166666);
  EXPECT_EQ(ran, "");
  wakeAt(10.0166667);
  EXPECT_EQ(ran, "frame");
}

TEST_F(TimerQueueTest, aDelayThatNeverEndsIsTheLastToWakeFor) {
  add(10.0, std::numeric_limits<double>::infinity(), "never", Precision::coarse);
  add(10.0, 86400.0, "tomorrow");
  EXPECT_EQ(queue.nextWake(), 86410.0);
}

TEST_F(TimerQueueTest, coarseDelayWakesAtARoundMomentNoLaterThanATwentieth) {
  add(100.3, 15.0, "tick", Precision::coarse);  // due at 115.3, at most at 116.05
  EXPECT_EQ(queue.nextWake(), 116.0);
}

TEST_F(TimerQueueTest, coarseDelayTakesTheNextGridThatItsAllowanceReaches) {
  add(100.1, 15.0, "tick", Precision::coarse);  // due at 115.1, at most at 115.85
  EXPECT_EQ(queue.nextWake(), 115.5);
}

TEST_F(TimerQueueTest, shortCoarseDelayIsExactWhenNoRoundMomentIsNear) {
  add(100.0, 0.011, "frame", Precision::coarse);
  EXPECT_EQ(queue.nextWake(), 100.0 + 0.011);
}

TEST_F(TimerQueueTest, coarseWorkRidesOnAnExactWakeUp) {
  add(100.3, 15.0, "tick", Precision::coarse);
  add(100.3, 15.2, "other");
  EXPECT_EQ(queue.nextWake(), 115.5);
  wakeAt(115.5);
  EXPECT_EQ(ran, "tickother");
  EXPECT_EQ(queue.nextWake(), std::nullopt);
}

TEST_F(TimerQueueTest, exactWorkNeverWaitsForACoarseOne) {
  add(100.3, 15.0, "tick", Precision::coarse);
  add(100.3, 1.0, "soon");
  EXPECT_EQ(queue.nextWake(), 101.3);
}

TEST_F(TimerQueueTest, cancelledWorkIsGoneAndUnknownIdsAreAllowed) {
  const auto first = add(10.0, 1.0, "a");
  add(10.0, 2.0, "b");
  queue.cancel(first);
  queue.cancel(first);
  queue.cancel(0);
  queue.cancel(99);
  EXPECT_EQ(queue.nextWake(), 12.0);
  wakeAt(20.0);
  EXPECT_EQ(ran, "b");
}

TEST_F(TimerQueueTest, negativeDelayIsDueNow) {
  add(10.0, -5.0, "a");
  EXPECT_EQ(queue.nextWake(), 10.0);
}

TEST_F(TimerQueueTest, workAddedDuringAWakeUpWaitsForTheNextOne) {
  queue.add(
      10.0, 0.0, [this] { add(10.0, 0.0, "second"); }, Precision::exact);
  wakeAt(10.0);
  EXPECT_EQ(ran, "");
  wakeAt(10.0);
  EXPECT_EQ(ran, "second");
}

TEST_F(TimerQueueTest, droppedWorkMayCancelOtherWorkInItsDestructor) {
  struct Canceller {
    TimerQueue* queue;
    Scheduler::TimerId other;
    ~Canceller() { queue->cancel(other); }
  };
  const auto other = add(10.0, 2.0, "other");
  auto held = std::make_unique<Canceller>(&queue, other);
  const auto holder = queue.add(
      10.0, 1.0, [held = std::move(held)] {}, Precision::exact);
  queue.cancel(holder);
  EXPECT_EQ(queue.nextWake(), std::nullopt);
}

}  // namespace
}  // namespace vorli::ui
