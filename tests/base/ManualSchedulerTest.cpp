#include "tests/fakes/ManualScheduler.h"

#include <string>
#include <thread>
#include <vector>

namespace vorli {
namespace {

using fakes::ManualScheduler;

struct ManualSchedulerTest : testing::Test {
  ManualScheduler::Work note(std::string text) {
    return [this, text = std::move(text)] { trace.push_back(text); };
  }

  ManualScheduler scheduler;
  std::vector<std::string> trace;
};

TEST_F(ManualSchedulerTest, postedWorkRunsInOrderAndNeverInsideThePost) {
  scheduler.post([this] {
    trace.push_back("first");
    scheduler.post(note("third"));
    trace.push_back("still first");
  });
  scheduler.post(note("second"));
  EXPECT_TRUE(trace.empty());
  scheduler.runReady();
  EXPECT_EQ(trace, (std::vector<std::string>{"first", "still first", "second", "third"}));
}

TEST_F(ManualSchedulerTest, delayedWorkRunsInOrderOfItsTimeAndOfItsCreation) {
  scheduler.after(2.0, note("late"));
  scheduler.after(1.0, note("early"));
  scheduler.after(1.0, note("early too"));
  scheduler.advance(0.999);
  EXPECT_TRUE(trace.empty());
  scheduler.advance(1.001);
  EXPECT_EQ(trace, (std::vector<std::string>{"early", "early too", "late"}));
}

TEST_F(ManualSchedulerTest, theClockShowsTheDueTimeOfEachPieceOfWork) {
  const double start = scheduler.now();
  std::vector<double> times;
  scheduler.after(1.0, [&] {
    times.push_back(scheduler.now() - start);
    scheduler.after(0.5, [&] { times.push_back(scheduler.now() - start); });
  });
  scheduler.advance(10.0);
  EXPECT_EQ(times, (std::vector<double>{1.0, 1.5}));
  EXPECT_EQ(scheduler.now() - start, 10.0);
}

TEST_F(ManualSchedulerTest, aDelayOfZeroOrLessIsDueAtTheNextTurn) {
  scheduler.after(0.0, note("zero"));
  scheduler.after(-5.0, note("negative"));
  EXPECT_TRUE(trace.empty());
  scheduler.runReady();
  EXPECT_EQ(trace, (std::vector<std::string>{"zero", "negative"}));
}

TEST_F(ManualSchedulerTest, cancelledWorkIsDroppedAndUnknownIdsAreAllowed) {
  const auto first = scheduler.after(1.0, note("first"));
  scheduler.after(1.0, note("second"));
  EXPECT_NE(first, 0u);
  scheduler.cancel(first);
  scheduler.cancel(first);
  scheduler.cancel(0);
  scheduler.cancel(999);
  EXPECT_EQ(scheduler.pendingTimers(), 1u);
  scheduler.advance(1.0);
  EXPECT_EQ(trace, std::vector<std::string>{"second"});
}

TEST_F(ManualSchedulerTest, workMayCancelWorkThatIsDueAtTheSameMoment) {
  ManualScheduler::TimerId second = 0;
  scheduler.after(1.0, [&] { scheduler.cancel(second); });
  second = scheduler.after(1.0, note("second"));
  scheduler.advance(1.0);
  EXPECT_TRUE(trace.empty());
}

TEST_F(ManualSchedulerTest, droppedWorkMayCancelOtherWork) {
  const auto other = scheduler.after(2.0, note("other"));
  std::shared_ptr<void> canceller(nullptr, [&](void*) { scheduler.cancel(other); });
  const auto holder = scheduler.after(1.0, [held = std::move(canceller)] {});
  EXPECT_EQ(scheduler.pendingTimers(), 2u);
  scheduler.cancel(holder);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(ManualSchedulerTest, knowsItsNextDeadline) {
  EXPECT_EQ(scheduler.earliestDeadline(), INFINITY);
  scheduler.after(3.0, note("work"));
  EXPECT_EQ(scheduler.earliestDeadline(), scheduler.now() + 3.0);
}

TEST_F(ManualSchedulerTest, aBlockedMainThreadRunsItsWorkLate) {
  const double start = scheduler.now();
  double ranAt = 0.0;
  scheduler.after(1.0, [&] { ranAt = scheduler.now() - start; });
  scheduler.advanceClockOnly(5.0);
  EXPECT_EQ(ranAt, 0.0);
  scheduler.runReady();
  EXPECT_EQ(ranAt, 5.0);
}

TEST_F(ManualSchedulerTest, otherThreadsMayPostAndReadTheClock) {
  int runs = 0;  // counted on this thread alone
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int k = 0; k < 100; ++k) {
        if (scheduler.now() >= 1000.0) scheduler.post([&] { ++runs; });
      }
    });
  }
  for (int k = 0; k < 100; ++k) scheduler.advance(0.01);
  for (auto& thread : threads) thread.join();
  scheduler.runReady();
  EXPECT_EQ(runs, 400);
}

}  // namespace
}  // namespace vorli
