#include "base/DeadlineRace.h"
#include "base/Sleep.h"
#include "base/TaskScope.h"
#include "tests/fakes/ManualScheduler.h"

#include <string>
#include <vector>

namespace vorli {
namespace {

struct TaskTest : testing::Test {
  fakes::ManualScheduler scheduler;
  std::vector<std::string> trace;

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

  Task<> racer(DeadlineRace<int> race) {
    const auto value = co_await race;
    trace.push_back(value ? std::to_string(*value) : "deadline");
  }
};

TEST_F(TaskTest, startsAtTheNextTurnAndReadsTopToBottom) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(parent());
  EXPECT_TRUE(trace.empty());
  scheduler.runReady();
  EXPECT_EQ(trace, (std::vector<std::string>{"start", "child"}));
  scheduler.advance(0.999);
  EXPECT_TRUE(handle.isRunning());
  scheduler.advance(0.001);
  EXPECT_EQ(trace.back(), "42");
  EXPECT_FALSE(handle.isRunning());
}

TEST_F(TaskTest, cancelEndsTheSleepAndTheFlowGoesOn) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(sleeper(100.0));
  scheduler.runReady();
  handle.cancel();
  EXPECT_TRUE(trace.empty());
  scheduler.runReady();
  EXPECT_EQ(trace, std::vector<std::string>{"cancelled"});
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(TaskTest, aFlowCancelledBeforeItsSleepDoesNotSleep) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(sleeper(100.0));
  handle.cancel();
  scheduler.runReady();
  EXPECT_EQ(trace, std::vector<std::string>{"cancelled"});
}

TEST_F(TaskTest, flowsEndWithTheirScope) {
  {
    TaskScope scope(scheduler);
    scope.spawn(sleeper(1.0));
    scheduler.runReady();
  }
  scheduler.advance(2.0);
  EXPECT_TRUE(trace.empty());
}

TEST_F(TaskTest, oneFlowWaitsForAnother) {
  TaskScope scope(scheduler);
  const auto handle = scope.spawn(sleeper(1.0));
  scope.spawn(waiter(handle));
  scope.spawn(waiter(TaskHandle()));
  scheduler.advance(1.0);
  EXPECT_EQ(trace, (std::vector<std::string>{"waited", "elapsed", "waited"}));
}

TEST_F(TaskTest, replyBeforeTheDeadlineWinsAndTheTimerIsGone) {
  TaskScope scope(scheduler);
  DeadlineRace<int> race(scheduler, 2.0);
  auto reply = race.reply();
  scope.spawn(racer(race));
  scheduler.advance(1.99);
  std::move(reply)(7);
  EXPECT_TRUE(trace.empty());
  scheduler.advance(1.0);
  EXPECT_EQ(trace, std::vector<std::string>{"7"});
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(TaskTest, deadlineBeforeTheReplyWinsOnce) {
  TaskScope scope(scheduler);
  DeadlineRace<int> race(scheduler, 2.0);
  auto reply = race.reply();
  scope.spawn(racer(race));
  scheduler.advance(1.999);
  EXPECT_TRUE(trace.empty());
  scheduler.advance(0.001);
  std::move(reply)(7);
  scheduler.advance(10.0);
  EXPECT_EQ(trace, std::vector<std::string>{"deadline"});
}

#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ == 12
TEST_F(TaskTest, anAwaitInsideAConditionIsCaughtAtTheStartOfTheFlow) {
  EXPECT_DEATH(static_cast<void>(awaitingInACondition()), "awaitsOutsideOfConditionsOnly");
}
#endif

}  // namespace
}  // namespace vorli
