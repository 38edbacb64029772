#include "macos/daemon/MainQueueScheduler.h"
#include "tests/macos/runtime/Dispatch.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace vorli::machost {
namespace {

using Order = std::vector<std::string>;

struct MainQueueSchedulerTest : testing::Test {
  Scheduler::Work note(const char* what) {
    return [this, what] { order.push_back(what); };
  }

  std::unique_ptr<MainQueueScheduler> loop = std::make_unique<MainQueueScheduler>();
  Order order;
};

TEST_F(MainQueueSchedulerTest, postedWorkRunsLaterInItsOrder) {
  loop->post(note("a"));
  loop->post(note("b"));
  EXPECT_EQ(order, Order{});
  macfake::runMainQueue();
  EXPECT_EQ(order, (Order{"a", "b"}));
}

TEST_F(MainQueueSchedulerTest, delayedWorkIsNeverEarly) {
  loop->after(2.0, note("late"));
  loop->after(1.0, note("soon"));
  macfake::advanceTime(0.999);
  EXPECT_EQ(order, Order{});
  macfake::advanceTime(0.001);
  EXPECT_EQ(order, Order{"soon"});
  macfake::advanceTime(1.0);
  EXPECT_EQ(order, (Order{"soon", "late"}));
  macfake::advanceTime(5.0);
  EXPECT_EQ(order.size(), 2U);
  EXPECT_EQ(macfake::activeTimers(), 0U);
}

TEST_F(MainQueueSchedulerTest, theClockIsThatOfTheTimers) {
  EXPECT_EQ(loop->now(), 1000.0);
  double fired = 0.0;
  loop->after(2.5, [this, &fired] { fired = loop->now(); });
  macfake::advanceTime(4.0);
  EXPECT_EQ(fired, 1002.5);
  EXPECT_EQ(loop->now(), 1004.0);
}

TEST_F(MainQueueSchedulerTest, aDelayOfNothingOrLessIsDueAtOnce) {
  loop->after(-1.0, note("past"), Scheduler::Precision::coarse);
  EXPECT_EQ(order, Order{});
  macfake::advanceTime(0.0);
  EXPECT_EQ(order, Order{"past"});
}

TEST_F(MainQueueSchedulerTest, cancelledWorkDoesNotRunAndUnknownTimersAreIgnored) {
  const auto timer = loop->after(1.0, note("never"));
  loop->cancel(timer);
  loop->cancel(timer);
  loop->cancel(99);
  macfake::advanceTime(2.0);
  EXPECT_EQ(order, Order{});
}

TEST_F(MainQueueSchedulerTest, workMayCancelAndStartTimers) {
  Scheduler::TimerId other = 0;
  loop->after(1.0, [this, &other] {
    loop->cancel(other);
    loop->after(1.0, note("next"));
  });
  other = loop->after(1.5, note("never"));
  macfake::advanceTime(3.0);
  EXPECT_EQ(order, Order{"next"});
}

TEST_F(MainQueueSchedulerTest, delaysThatOutliveTheLoopDoNothing) {
  loop->after(1.0, note("never"));
  loop.reset();
  macfake::advanceTime(2.0);
  EXPECT_EQ(order, Order{});
}

TEST_F(MainQueueSchedulerTest, theLoopRunsUntilItIsStopped) {
  loop->after(1.0, [this] {
    order.push_back("stop");
    loop->stop();
  });
  loop->after(30.0, note("never"));
  loop->run();
  EXPECT_EQ(order, Order{"stop"});
}

}  // namespace
}  // namespace vorli::machost
