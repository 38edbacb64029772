#include "base/Sleep.h"
#include "base/TaskScope.h"
#include "tests/fakes/ManualScheduler.h"

#include <optional>
#include <string>
#include <vector>

namespace vorli {
namespace {

using Trace = std::vector<std::string>;
using Sentinel = std::shared_ptr<int>;

struct TaskTest : testing::Test {
  Task<int> child(int value) {
    trace.push_back("child");
    co_await sleepFor(scheduler, 1.0);
    co_return value + 1;
  }

  Task<> parent() {
    trace.push_back("start");
    const int result = co_await child(41);
    trace.push_back(std::to_string(result));
  }

  Task<> sleeper(double seconds) {
    const auto result = co_await sleepFor(scheduler, seconds);
    trace.push_back(result == SleepResult::cancelled ? "cancelled" : "elapsed");
  }

#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ == 12
  Task<> awaitingInACondition() {
    if (co_await isCancelled()) trace.push_back("cancelled");
  }
#endif

  Task<> waiter(TaskHandle other) {
    co_await other.finished();
    trace.push_back("waited");
  }

  /// Sleeps three times for a second, and records after each sleep how it ended.
  Task<> threeSleeps() {
    for (int i = 1; i <= 3; ++i) {
      const auto result = co_await sleepFor(scheduler, 1.0);
      trace.push_back(std::to_string(i) + (result == SleepResult::cancelled ? " cancelled" : " elapsed"));
    }
  }

  Task<std::unique_ptr<int>> moveOnly(int value) {
    co_return std::make_unique<int>(value);
  }

  Task<int> sumOfThree() {
    int sum = 0;
    for (int i = 0; i < 3; ++i) sum += co_await child(i);
    co_return sum;
  }

  Task<> nested(Sentinel held) {
    const int sum = co_await sumOfThree();
    const auto pointer = co_await moveOnly(100);
    trace.push_back(std::to_string(sum + *pointer + *held));
  }

  Task<> holder(Sentinel held) {
    const auto local = held;
    co_await holdDeeper(held);
  }
  Task<> holdDeeper(Sentinel held) {
    const auto local = held;
    co_await sleepFor(scheduler, 100.0);
    trace.push_back("never");
  }

  Task<> abandonsItself([[maybe_unused]] Sentinel held) {
    co_await sleepFor(scheduler, 1.0);
    ownScope.reset();
    trace.push_back("still running");
    co_await sleepFor(scheduler, 1.0);
    trace.push_back("never");
  }

  Task<> endsItsScopeAtItsEnd([[maybe_unused]] Sentinel held) {
    ownScope.reset();
    trace.push_back("done");
    co_return;
  }

  Task<> tellsWhetherCancelled() {
    for (int i = 0; i < 2; ++i) {
      const bool cancelled = co_await isCancelled();
      trace.push_back(cancelled ? "cancelled" : "not cancelled");
      co_await sleepFor(scheduler, 1.0);
    }
  }

  Task<> cancels(TaskHandle other) {
    other.cancel();
    co_return;
  }

  fakes::ManualScheduler scheduler;
  Trace trace;
  std::optional<TaskScope> ownScope;
  Sentinel sentinel = std::make_shared<int>(1000);
};

TEST_F(TaskTest, startsAtTheNextTurnAndReadsTopToBottom) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(parent());
  EXPECT_TRUE(trace.empty());
  scheduler.runReady();
  EXPECT_EQ(trace, (Trace{"start", "child"}));
  scheduler.advance(0.999);
  EXPECT_TRUE(handle.isRunning());
  scheduler.advance(0.001);
  EXPECT_EQ(trace.back(), "42");
  EXPECT_FALSE(handle.isRunning());
}

TEST_F(TaskTest, nestedFlowsReturnTheirValues) {
  TaskScope scope(scheduler);
  scope.spawn(nested(sentinel));
  scheduler.advance(2.999);
  EXPECT_EQ(trace, (Trace{"child", "child", "child"}));
  scheduler.advance(0.001);
  EXPECT_EQ(trace.back(), "1106");  // 1 + 2 + 3, 100 and the sentinel's 1000
  EXPECT_EQ(sentinel.use_count(), 1);
}

TEST_F(TaskTest, aFlowThatIsNeverAwaitedDoesNothingAndLosesNothing) {
  {
    const auto task = holder(sentinel);
    EXPECT_EQ(sentinel.use_count(), 2);
  }
  EXPECT_EQ(sentinel.use_count(), 1);
  EXPECT_TRUE(trace.empty());
}

TEST_F(TaskTest, aFlowMayOutlastManySleeps) {
  TaskScope scope(scheduler);
  scope.spawn(threeSleeps());
  scheduler.advance(2.999);
  EXPECT_EQ(trace, (Trace{"1 elapsed", "2 elapsed"}));
  scheduler.advance(0.001);
  EXPECT_EQ(trace, (Trace{"1 elapsed", "2 elapsed", "3 elapsed"}));
}

TEST_F(TaskTest, cancelEndsTheSleepAndTheFlowContinues) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(sleeper(100.0));
  scheduler.runReady();
  handle.cancel();
  EXPECT_TRUE(trace.empty());
  scheduler.runReady();
  EXPECT_EQ(trace, Trace{"cancelled"});
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(TaskTest, aFlowCancelledBeforeItsSleepDoesNotSleep) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(sleeper(100.0));
  handle.cancel();
  scheduler.runReady();
  EXPECT_EQ(trace, Trace{"cancelled"});
}

TEST_F(TaskTest, cancelAtEachSleepCutsThatOneAndAllLaterOnesShort) {
  const Trace expected[] = {{"1 cancelled", "2 cancelled", "3 cancelled"},
                            {"1 elapsed", "2 cancelled", "3 cancelled"},
                            {"1 elapsed", "2 elapsed", "3 cancelled"},
                            {"1 elapsed", "2 elapsed", "3 elapsed"}};
  for (int seconds = 0; seconds <= 3; ++seconds) {
    trace.clear();
    TaskScope scope(scheduler);
    const auto handle = scope.spawn(threeSleeps());
    scheduler.advance(seconds);
    handle.cancel();
    handle.cancel();
    scheduler.runReady();
    EXPECT_EQ(trace, expected[seconds]) << seconds;
    EXPECT_FALSE(handle.isRunning());
    EXPECT_EQ(scheduler.pendingTimers(), 0u);
  }
}

TEST_F(TaskTest, cancelReachesASleepInANestedFlow) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(parent());
  scheduler.runReady();
  handle.cancel();
  scheduler.runReady();
  EXPECT_EQ(trace.back(), "42");
}

TEST_F(TaskTest, cancelAtTheMomentASleepEndsWakesOnce) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(threeSleeps());
  scheduler.runReady();
  scheduler.advanceClockOnly(1.0);
  handle.cancel();
  scheduler.runReady();
  EXPECT_EQ(trace, (Trace{"1 cancelled", "2 cancelled", "3 cancelled"}));
}

TEST_F(TaskTest, aFlowCanReadWhetherItWasCancelled) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(tellsWhetherCancelled());
  scheduler.runReady();
  EXPECT_EQ(trace, Trace{"not cancelled"});
  handle.cancel();
  scheduler.runReady();
  EXPECT_EQ(trace, (Trace{"not cancelled", "cancelled"}));
}

TEST_F(TaskTest, oneFlowMayCancelAnother) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(sleeper(100.0));
  scope.spawn(cancels(handle));
  scheduler.runReady();
  EXPECT_EQ(trace, Trace{"cancelled"});
}

TEST_F(TaskTest, flowsEndWithTheirScope) {
  {
    TaskScope scope(scheduler);
    scope.spawn(sleeper(1.0));
    scheduler.runReady();
  }
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  scheduler.advance(2.0);
  EXPECT_TRUE(trace.empty());
}

TEST_F(TaskTest, aScopeDestroysTheFramesOfItsFlowsNestedOnesIncluded) {
  TaskHandle handle;
  {
    TaskScope scope(scheduler);
    handle = scope.spawn(holder(sentinel));
    scope.spawn(holder(sentinel));
    EXPECT_EQ(sentinel.use_count(), 3);  // two parameters
    scheduler.runReady();
    EXPECT_EQ(sentinel.use_count(), 9);  // in each: two parameters, two locals
    EXPECT_TRUE(handle.isRunning());
  }
  EXPECT_EQ(sentinel.use_count(), 1);
  EXPECT_FALSE(handle.isRunning());
}

TEST_F(TaskTest, aFlowThatNeverStartedEndsWithItsScopeToo) {
  TaskHandle handle;
  {
    TaskScope scope(scheduler);
    handle = scope.spawn(holder(sentinel));
  }
  EXPECT_EQ(sentinel.use_count(), 1);
  EXPECT_FALSE(handle.isRunning());
  scheduler.runReady();
  EXPECT_TRUE(trace.empty());
}

TEST_F(TaskTest, aFinishedFlowReleasesItsFrameWhileItsScopeLives) {
  TaskScope scope(scheduler);
  scope.spawn(nested(sentinel));
  scheduler.advance(3.0);
  EXPECT_EQ(sentinel.use_count(), 1);
}

TEST_F(TaskTest, aFlowThatEndsItsOwnScopeRunsToItsNextSuspension) {
  ownScope.emplace(scheduler);
  const auto handle = ownScope->spawn(abandonsItself(sentinel));
  scheduler.advance(1.0);
  EXPECT_EQ(trace, Trace{"still running"});
  EXPECT_FALSE(handle.isRunning());
  EXPECT_EQ(sentinel.use_count(), 1);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  scheduler.advance(10.0);
  EXPECT_EQ(trace, Trace{"still running"});
}

TEST_F(TaskTest, aFlowMayEndItsOwnScopeAtItsEnd) {
  ownScope.emplace(scheduler);
  ownScope->spawn(endsItsScopeAtItsEnd(sentinel));
  scheduler.runReady();
  EXPECT_EQ(trace, Trace{"done"});
  EXPECT_EQ(sentinel.use_count(), 1);
}

TEST_F(TaskTest, aFlowSpawnedDuringTheDestructionOfItsScopeIsDestroyedWithIt) {
  ownScope.emplace(scheduler);
  std::shared_ptr<int> spawner(new int(0), [this](int* value) {
    delete value;
    ownScope->spawn(holder(sentinel));
  });
  ownScope->spawn(holder(std::move(spawner)));
  scheduler.runReady();
  ownScope.reset();
  EXPECT_EQ(sentinel.use_count(), 1);
  scheduler.runReady();
  EXPECT_TRUE(trace.empty());
}

TEST_F(TaskTest, oneFlowWaitsForAnother) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(sleeper(1.0));
  scope.spawn(waiter(handle));
  scope.spawn(waiter(TaskHandle()));
  scheduler.advance(1.0);
  EXPECT_EQ(trace, (Trace{"waited", "elapsed", "waited"}));
}

TEST_F(TaskTest, manyFlowsMayWaitForOneAndLateWaitersContinueAtOnce) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(sleeper(1.0));
  scope.spawn(waiter(handle));
  scope.spawn(waiter(handle));
  scheduler.advance(1.0);
  EXPECT_EQ(trace, (Trace{"elapsed", "waited", "waited"}));
  scope.spawn(waiter(handle));
  scheduler.runReady();
  EXPECT_EQ(trace.size(), 4u);
}

TEST_F(TaskTest, waitingForADestroyedFlowReturnsAtOnce) {
  TaskHandle handle;
  {
    TaskScope other(scheduler);
    handle = other.spawn(sleeper(1.0));
    scheduler.runReady();
  }
  TaskScope scope(scheduler);
  scope.spawn(waiter(handle));
  scheduler.runReady();
  EXPECT_EQ(trace, Trace{"waited"});
}

TEST_F(TaskTest, aWaiterIsDestroyedWithTheFlowThatItWaitsFor) {
  TaskScope scope(scheduler);
  TaskHandle waiting;
  {
    TaskScope other(scheduler);
    waiting = scope.spawn(waiter(other.spawn(sleeper(1.0))));
    scheduler.runReady();
    EXPECT_TRUE(waiting.isRunning());
  }
  EXPECT_FALSE(waiting.isRunning());
  scheduler.advance(2.0);
  EXPECT_TRUE(trace.empty());
}

TEST_F(TaskTest, aWaiterWhoseScopeIsDestroyedIsNotWoken) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(sleeper(1.0));
  {
    TaskScope other(scheduler);
    other.spawn(waiter(handle));
    scheduler.runReady();
  }
  scheduler.advance(1.0);
  EXPECT_EQ(trace, Trace{"elapsed"});
}

TEST_F(TaskTest, anEmptyHandleCountsAsAFinishedFlow) {
  const TaskHandle none;
  EXPECT_FALSE(none.isRunning());
  none.cancel();
}

#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ == 12
TEST_F(TaskTest, anAwaitInsideAConditionIsCaughtAtTheStartOfTheFlow) {
  EXPECT_DEATH(static_cast<void>(awaitingInACondition()), "awaitsOutsideOfConditionsOnly");
}
#endif

}  // namespace
}  // namespace vorli
