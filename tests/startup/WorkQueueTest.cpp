#include "base/TaskScope.h"
#include "startup/WorkQueue.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/ManualScheduler.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli {
namespace {

struct WorkQueueTest : testing::Test {
  fakes::ManualScheduler scheduler;
  fakes::BackgroundWork background{scheduler};
  std::optional<WorkQueue> queue{std::in_place, scheduler, background};
  std::vector<std::string> log;
  std::optional<TaskScope> tasks{std::in_place, scheduler};

  Task<> piece(std::string name) {
    WorkQueue::Work work = [this, name] { log.push_back(name); };
    co_await queue->run(std::move(work));
    log.push_back(name + " done");
  }
  Task<> question(bool answer) {
    WorkQueue::Question asked = [this, answer] {
      log.push_back("asked");
      return answer;
    };
    const bool found = co_await queue->ask(std::move(asked));
    log.push_back(found ? "yes" : "no");
  }
};

TEST_F(WorkQueueTest, takesOnePieceAfterAnother) {
  tasks->spawn(piece("a"));
  tasks->spawn(piece("b"));
  scheduler.advance(0.099);
  EXPECT_TRUE(log.empty());
  scheduler.advance(0.001);
  EXPECT_EQ(log, (std::vector<std::string>{"a", "a done"}));
  scheduler.advance(0.1);
  EXPECT_EQ(log, (std::vector<std::string>{"a", "a done", "b", "b done"}));
  EXPECT_EQ(background.started, 2);
}

TEST_F(WorkQueueTest, aQuestionIsAnsweredOnTheSecondThread) {
  tasks->spawn(question(true));
  tasks->spawn(question(false));
  scheduler.runReady();
  EXPECT_TRUE(log.empty());
  scheduler.advance(0.2);
  EXPECT_EQ(log, (std::vector<std::string>{"asked", "yes", "asked", "no"}));
}

TEST_F(WorkQueueTest, workContinuesWhenNobodyWaitsForItAnyMore) {
  tasks->spawn(piece("a"));
  tasks->spawn(piece("b"));
  scheduler.runReady();
  tasks.reset();
  scheduler.advance(1.0);
  EXPECT_EQ(log, (std::vector<std::string>{"a", "b"}));
}

TEST_F(WorkQueueTest, runningWorkIsFinishedAndTheRestDropped) {
  tasks->spawn(piece("a"));
  tasks->spawn(piece("b"));
  scheduler.runReady();
  tasks.reset();
  queue.reset();
  EXPECT_EQ(log, (std::vector<std::string>{"a"}));
  scheduler.advance(1.0);
  EXPECT_EQ(log, (std::vector<std::string>{"a"}));
}

}  // namespace
}  // namespace vorli
