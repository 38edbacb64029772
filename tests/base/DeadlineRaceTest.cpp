#include "base/DeadlineRace.h"
#include "base/Sleep.h"
#include "base/TaskScope.h"
#include "tests/fakes/ManualScheduler.h"

#include <string>
#include <thread>
#include <vector>

namespace vorli {
namespace {

using Trace = std::vector<std::string>;

struct DeadlineRaceTest : testing::Test {
  Task<> racer(DeadlineRace<int> race) {
    const auto value = co_await race;
    trace.push_back(value ? std::to_string(*value) : "deadline");
  }

  Task<> lateRacer(DeadlineRace<int> race) {
    co_await sleepUntilSettled();
    const auto value = co_await race;
    trace.push_back(value ? std::to_string(*value) : "deadline");
  }
  Task<> sleepUntilSettled() { co_await sleepFor(scheduler, 5.0); }

  Task<> moveOnlyRacer(DeadlineRace<std::unique_ptr<int>> race) {
    const auto value = co_await race;
    trace.push_back(std::to_string(**value));
  }

  fakes::ManualScheduler scheduler;
  Trace trace;
  TaskScope scope{scheduler};
};

TEST_F(DeadlineRaceTest, replyBeforeTheDeadlineWinsAndTheTimerIsGone) {
  DeadlineRace<int> race(scheduler, 2.0);
  auto reply = race.reply();
  scope.spawn(racer(race));
  scheduler.advance(1.99);
  std::move(reply)(7);
  EXPECT_TRUE(trace.empty());
  scheduler.advance(1.0);
  EXPECT_EQ(trace, Trace{"7"});
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(DeadlineRaceTest, deadlineBeforeTheReplyWinsOnce) {
  DeadlineRace<int> race(scheduler, 2.0);
  auto reply = race.reply();
  scope.spawn(racer(race));
  scheduler.advance(1.999);
  EXPECT_TRUE(trace.empty());
  scheduler.advance(0.001);
  EXPECT_EQ(trace, Trace{"deadline"});
  std::move(reply)(7);
  scheduler.advance(10.0);
  EXPECT_EQ(trace, Trace{"deadline"});
}

TEST_F(DeadlineRaceTest, anEarlierReplyWinsOverADeadlineThatIsDueBeforeItsDelivery) {
  DeadlineRace<int> race(scheduler, 2.0);
  auto reply = race.reply();
  scope.spawn(racer(race));
  scheduler.runReady();
  scheduler.advanceClockOnly(3.0);
  std::move(reply)(7);
  scheduler.runReady();
  EXPECT_EQ(trace, Trace{"7"});
}

TEST_F(DeadlineRaceTest, theDeadlineRunsFromConstruction) {
  DeadlineRace<int> race(scheduler, 2.0);
  scheduler.advance(1.5);
  scope.spawn(racer(race));
  scheduler.advance(0.499);
  EXPECT_TRUE(trace.empty());
  scheduler.advance(0.001);
  EXPECT_EQ(trace, Trace{"deadline"});
}

TEST_F(DeadlineRaceTest, waitingForASettledRaceReturnsAtOnce) {
  DeadlineRace<int> answered(scheduler, 2.0);
  answered.reply()(7);
  DeadlineRace<int> late(scheduler, 2.0);
  scope.spawn(lateRacer(answered));
  scope.spawn(lateRacer(late));
  scheduler.advance(5.0);
  EXPECT_EQ(trace, (Trace{"7", "deadline"}));
}

TEST_F(DeadlineRaceTest, onlyTheFirstOfTwoRepliesCounts) {
  DeadlineRace<int> race(scheduler, 2.0);
  auto first = race.reply();
  auto second = race.reply();
  scope.spawn(racer(race));
  std::move(second)(2);
  std::move(first)(1);
  scheduler.advance(3.0);
  EXPECT_EQ(trace, Trace{"2"});
}

TEST_F(DeadlineRaceTest, aDroppedReplyLeavesTheRaceToTheDeadline) {
  DeadlineRace<int> race(scheduler, 2.0);
  { const auto reply = race.reply(); }
  scope.spawn(racer(race));
  scheduler.advance(2.0);
  EXPECT_EQ(trace, Trace{"deadline"});
}

TEST_F(DeadlineRaceTest, carriesMoveOnlyAnswers) {
  DeadlineRace<std::unique_ptr<int>> race(scheduler, 2.0);
  race.reply()(std::make_unique<int>(7));
  scope.spawn(moveOnlyRacer(std::move(race)));
  scheduler.runReady();
  EXPECT_EQ(trace, Trace{"7"});
}

TEST_F(DeadlineRaceTest, theAnswerToAFlowThatIsGoneIsDropped) {
  OnceReply<int> reply;
  {
    TaskScope shortLived(scheduler);
    DeadlineRace<int> race(scheduler, 2.0);
    reply = race.reply();
    shortLived.spawn(racer(race));
    scheduler.runReady();
  }
  std::move(reply)(7);
  scheduler.advance(3.0);
  EXPECT_TRUE(trace.empty());
}

TEST_F(DeadlineRaceTest, answersFromTwoThreadsSettleItOnce) {
  for (int round = 0; round < 200; ++round) {
    trace.clear();
    DeadlineRace<int> race(scheduler, 2.0);
    scope.spawn(racer(race));
    std::thread first([reply = race.reply()]() mutable { std::move(reply)(1); });
    std::thread second([reply = race.reply()]() mutable { std::move(reply)(2); });
    scheduler.advance(1.0);
    first.join();
    second.join();
    scheduler.runReady();
    ASSERT_EQ(trace.size(), 1u);
    ASSERT_TRUE(trace.front() == "1" || trace.front() == "2");
  }
}

TEST_F(DeadlineRaceTest, anAnswerAgainstTheDeadlineFromAnotherThreadHasOneWinner) {
  for (int round = 0; round < 200; ++round) {
    trace.clear();
    DeadlineRace<int> race(scheduler, 2.0);
    scope.spawn(racer(race));
    std::thread answering([reply = race.reply()]() mutable { std::move(reply)(7); });
    scheduler.advance(2.0);
    answering.join();
    scheduler.runReady();
    ASSERT_EQ(trace.size(), 1u);
    ASSERT_TRUE(trace.front() == "7" || trace.front() == "deadline");
  }
}

}  // namespace
}  // namespace vorli
