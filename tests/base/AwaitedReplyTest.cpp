#include "base/AwaitedReply.h"
#include "base/TaskScope.h"
#include "tests/fakes/ManualScheduler.h"

#include <thread>
#include <vector>

namespace vorli {
namespace {

struct AwaitedReplyTest : testing::Test {
  fakes::ManualScheduler scheduler;
  std::vector<int> answers;

  Task<> waitFor(AwaitedReply<int> awaited) { answers.push_back(co_await awaited); }
};

TEST_F(AwaitedReplyTest, theFlowWaitsForTheAnswerHoweverLongItTakes) {
  TaskScope scope(scheduler);
  AwaitedReply<int> awaited(scheduler);
  auto reply = awaited.reply();
  const auto handle = scope.spawn(waitFor(awaited));
  scheduler.advance(10000.0);
  EXPECT_TRUE(handle.isRunning());
  std::move(reply)(7);
  EXPECT_TRUE(answers.empty());
  scheduler.runReady();
  EXPECT_EQ(answers, std::vector{7});
}

TEST_F(AwaitedReplyTest, anAnswerBeforeTheWaitIsKept) {
  TaskScope scope(scheduler);
  AwaitedReply<int> awaited(scheduler);
  awaited.reply()(7);
  scheduler.runReady();
  scope.spawn(waitFor(awaited));
  scheduler.runReady();
  EXPECT_EQ(answers, std::vector{7});
}

TEST_F(AwaitedReplyTest, theAnswerMayComeFromAnotherThread) {
  TaskScope scope(scheduler);
  AwaitedReply<int> awaited(scheduler);
  scope.spawn(waitFor(awaited));
  scheduler.runReady();
  std::thread([reply = awaited.reply()]() mutable { std::move(reply)(7); }).join();
  scheduler.runReady();
  EXPECT_EQ(answers, std::vector{7});
}

TEST_F(AwaitedReplyTest, anAnswerToAFlowThatIsGoneDoesNothing) {
  AwaitedReply<int> awaited(scheduler);
  auto reply = awaited.reply();
  {
    TaskScope scope(scheduler);
    scope.spawn(waitFor(awaited));
    scheduler.runReady();
  }
  std::move(reply)(7);
  scheduler.runReady();
  EXPECT_TRUE(answers.empty());
}

}  // namespace
}  // namespace vorli
