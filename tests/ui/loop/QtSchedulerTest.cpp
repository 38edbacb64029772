#include "ui/loop/QtScheduler.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <algorithm>
#include <chrono>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace vorli::ui {
namespace {

// Runs the loop until the condition holds; returns false if it does not hold within thirty seconds.
bool runUntil(const std::function<bool()>& condition) {
  const QDeadlineTimer deadline(30'000);
  while (!condition()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 100);
  }
  return true;
}

struct QtSchedulerTest : testing::Test {
  QtScheduler scheduler;
  std::string ran;
};

TEST_F(QtSchedulerTest, postedWorkRunsInOrderAndNeverInsideTheCall) {
  scheduler.post([this] { ran += 'a'; });
  scheduler.post([this] {
    ran += 'b';
    scheduler.post([this] { ran += 'd'; });
    ran += 'c';
  });
  EXPECT_EQ(ran, "");
  ASSERT_TRUE(runUntil([this] { return ran.size() == 4; }));
  EXPECT_EQ(ran, "abcd");
}

TEST_F(QtSchedulerTest, workPostedByOtherThreadsRunsOnTheMainThread) {
  constexpr int posts = 1000;
  int count = 0;
  bool alwaysMain = true;
  const auto mainThread = std::this_thread::get_id();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int post = 0; post < posts; ++post) {
        scheduler.post([&] {
          ++count;
          alwaysMain = alwaysMain && std::this_thread::get_id() == mainThread;
        });
      }
    });
  }
  EXPECT_TRUE(runUntil([&] { return count == 4 * posts; }));
  for (auto& thread : threads) thread.join();
  EXPECT_TRUE(alwaysMain);
}

TEST_F(QtSchedulerTest, aPostWakesALoopThatSleeps) {
  bool woken = false;
  std::thread poster([&] { scheduler.post([&] { woken = true; }); });
  EXPECT_TRUE(runUntil([&] { return woken; }));
  poster.join();
}

TEST_F(QtSchedulerTest, delayIsNeverShortened) {
  for (const double seconds : {0.0, 0.0004, 0.005, 0.0166666, 0.06}) {
    for (const auto precision : {Scheduler::Precision::exact, Scheduler::Precision::coarse}) {
      const double start = scheduler.now();
      double fired = 0.0;
      scheduler.after(
          seconds, [&] { fired = scheduler.now(); }, precision);
      EXPECT_EQ(fired, 0.0);
      ASSERT_TRUE(runUntil([&] { return fired > 0.0; }));
      EXPECT_GE(fired - start, seconds);
    }
  }
}

TEST_F(QtSchedulerTest, aChainOfDelaysIsNotRoundedToMilliseconds) {
  constexpr double delay = 0.0011;
  constexpr double inWholeMilliseconds = 0.002;  // what none would stay below, even on an idle machine
  constexpr std::size_t count = 300;
  std::vector<double> took;
  std::function<void()> startNext = [&] {
    scheduler.after(delay, [&, start = scheduler.now()] {
      took.push_back(scheduler.now() - start);
      if (took.size() < count) startNext();
    });
  };
  startNext();
  ASSERT_TRUE(runUntil([&] { return took.size() == count; }));
  const double shortest = std::ranges::min(took);
  EXPECT_GE(shortest, delay);
  EXPECT_LT(shortest, inWholeMilliseconds);
}

TEST_F(QtSchedulerTest, anEndlessDelayDoesNotBlockTheLoop) {
  scheduler.after(std::numeric_limits<double>::infinity(), [this] { ran += 'x'; });
  scheduler.after(0.001, [this] { ran += 'a'; });
  ASSERT_TRUE(runUntil([this] { return !ran.empty(); }));
  EXPECT_EQ(ran, "a");
}

TEST_F(QtSchedulerTest, aDelayThatWasPutOffDoesNotFireAtItsOldMoment) {
  double start = scheduler.now();
  const auto early = scheduler.after(0.001, [this] { ran += 'x'; });
  std::promise<void> neverKept;
  neverKept.get_future().wait_for(std::chrono::milliseconds(2));  // it becomes due, and the loop does not run
  ASSERT_GT(scheduler.now() - start, 0.001);
  scheduler.cancel(early);
  start = scheduler.now();
  scheduler.after(0.02, [this] { ran += 'a'; });
  ASSERT_TRUE(runUntil([this] { return !ran.empty(); }));
  EXPECT_EQ(ran, "a");
  EXPECT_GE(scheduler.now() - start, 0.02);
}

TEST_F(QtSchedulerTest, timersRunInTheOrderOfTheirDueTimes) {
  // The delays differ by more than the machine pauses between these lines.
  scheduler.after(0.9, [this] { ran += 'c'; });
  scheduler.after(0.3, [this] { ran += 'a'; });
  scheduler.after(0.6, [this] { ran += 'b'; });
  ASSERT_TRUE(runUntil([this] { return ran.size() == 3; }));
  EXPECT_EQ(ran, "abc");
}

TEST_F(QtSchedulerTest, cancelledTimerNeverRuns) {
  const auto cancelled = scheduler.after(0.005, [this] { ran += 'x'; });
  scheduler.after(0.02, [this] { ran += 'a'; });
  scheduler.cancel(cancelled);
  scheduler.cancel(0);
  ASSERT_TRUE(runUntil([this] { return !ran.empty(); }));
  EXPECT_EQ(ran, "a");
}

TEST_F(QtSchedulerTest, oneTimerMayCancelAnotherThatIsDueWithIt) {
  Scheduler::TimerId second = 0;
  scheduler.after(0.0, [&] {
    ran += 'a';
    scheduler.cancel(second);
  });
  second = scheduler.after(0.0, [this] { ran += 'x'; });
  scheduler.after(0.02, [this] { ran += 'b'; });
  ASSERT_TRUE(runUntil([this] { return ran.size() >= 2; }));
  EXPECT_EQ(ran, "ab");
}

TEST_F(QtSchedulerTest, timersContinueInsideANestedEventLoop) {
  scheduler.after(0.001, [this] {
    ran += 'a';
    QEventLoop inner;
    scheduler.after(0.001, [this, &inner] {
      ran += 'b';
      inner.quit();
    });
    inner.exec();
    ran += 'c';
  });
  scheduler.after(0.001, [this] { ran += '-'; });
  ASSERT_TRUE(runUntil([this] { return ran.size() == 4; }));
  EXPECT_EQ(ran, "a-bc");
}

TEST_F(QtSchedulerTest, capturesOfDroppedWorkMayUseTheSchedulerInTheirDestructors) {
  auto dropped = std::make_unique<QtScheduler>();
  struct Guard {
    Scheduler* scheduler;
    Scheduler::TimerId other;
    ~Guard() {
      scheduler->cancel(other);
      scheduler->post([] {});
    }
  };
  const auto other = dropped->after(5.0, [] {});
  dropped->after(1.0, [guard = std::make_unique<Guard>(dropped.get(), other)] {});
  dropped->post([guard = std::make_unique<Guard>(dropped.get(), other)] {});
  dropped.reset();
  QCoreApplication::sendPostedEvents();
}

}  // namespace
}  // namespace vorli::ui
