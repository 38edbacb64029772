#include "tests/fakes/Publish.h"
#include "tests/polish/PolishFixture.h"

#include <utility>
#include <vector>

namespace vorli {
namespace {

constexpr auto resetLine = "handleTap watchdog: isReleasing still true after 18s — forcing reset";

/// A main loop that holds back delays of one length until they are released.
class StallingScheduler final : public Scheduler {
 public:
  explicit StallingScheduler(Scheduler& loop) : loop_(loop) {}

  double now() const override { return loop_.now(); }
  void post(Work work) override { loop_.post(std::move(work)); }
  TimerId after(double seconds, Work work, Precision precision) override {
    if (seconds != stalledSeconds) return loop_.after(seconds, std::move(work), precision);
    held_.push_back(std::move(work));
    return 0;
  }
  void cancel(TimerId timer) override { loop_.cancel(timer); }

  void stall(double seconds) { stalledSeconds = seconds; }
  void letGo() {
    stalledSeconds = -1.0;
    for (auto& work : std::exchange(held_, {})) loop_.post(std::move(work));
  }

 private:
  Scheduler& loop_;
  double stalledSeconds = -1.0;
  std::vector<Work> held_;
};

struct PolishWatchdogTest : PolishFixture {
  PolishWatchdogTest() {
    view.emplace(popoverServices(stalling));
    fakes::publish(view->animatedProgress, 1.0);
    fakes::publish(view->animatedState, RingState::critical);
    scheduler.runReady();
  }
  ~PolishWatchdogTest() override { view.reset(); }  // before the scheduler that it uses

  int resets() const { return log.count(resetLine); }

  StallingScheduler stalling{scheduler};
};

TEST_F(PolishWatchdogTest, resetsAStuckFlowAfter18SecondsAndLeavesTheRing) {
  stalling.stall(PolishTimings::full.hold);
  press();
  setUsedPages(500'000);
  goBefore(18.0);
  EXPECT_TRUE(view->isReleasing);
  EXPECT_EQ(view->statusSentence(), "Now, your Mac has room to breathe.");
  EXPECT_EQ(view->postClearPercentage.get(), 50);
  EXPECT_EQ(resets(), 0);

  goTo(18.0 + rounding);
  EXPECT_FALSE(view->isReleasing);
  EXPECT_EQ(view->postClearSentence.get(), std::nullopt);
  EXPECT_EQ(view->postClearPercentage.get(), std::nullopt);
  EXPECT_EQ(resets(), 1);
  EXPECT_EQ(popoverLines().back(), resetLine);
  EXPECT_EQ(view->animatedProgress, 0.0);
  EXPECT_EQ(view->animatedState.get(), RingState::healthy);
  EXPECT_EQ(closes, 1);
}

TEST_F(PolishWatchdogTest, theRingMovesAgainWithTheMonitorsNextChange) {
  stalling.stall(PolishTimings::full.hold);
  press();
  goTo(18.0 + rounding);
  publishRing(1.0);  // what it was before
  EXPECT_EQ(view->animatedProgress, 0.0);
  EXPECT_EQ(view->animatedState.get(), RingState::healthy);
  publishRing(0.95);
  EXPECT_EQ(view->animatedProgress, 0.95);
  EXPECT_EQ(view->animatedState.get(), RingState::healthy);  // the state has not changed
  publishRing(0.7);
  EXPECT_EQ(view->animatedState.get(), RingState::warming);
}

TEST_F(PolishWatchdogTest, aFinishedFlowIsNoLongerWatched) {
  press();
  goTo(16.0);
  press();  // its own watchdog checks 18 seconds from here
  goTo(14.9);
  EXPECT_TRUE(view->isReleasing);
  EXPECT_EQ(resets(), 0);
  goTo(40.0);
  EXPECT_EQ(resets(), 0);
}

TEST_F(PolishWatchdogTest, aStuckFlowThatResumesContinuesAndClearsTheFlagAgain) {
  stalling.stall(PolishTimings::full.hold);
  press();
  goTo(25.0);
  log.clear();
  stalling.letGo();
  scheduler.runReady();
  EXPECT_EQ(view->animatedProgress, 1.0);
  EXPECT_EQ(view->animatedState.get(), RingState::critical);
  goTo(25.0 + 2.9 + 1.5 + rounding);
  EXPECT_EQ(popoverLines().back(), "handleTap: release flag cleared. animatedProgress=1.00");
  EXPECT_EQ(popoverLines().size(), 2u);
}

TEST_F(PolishWatchdogTest, aNewPressAfterTheResetRunsBesideTheStuckFlow) {
  stalling.stall(PolishTimings::full.hold);
  press();
  goTo(19.0);
  publishRing(0.5);
  publishRing(0.9);
  EXPECT_EQ(view->animatedState.get(), RingState::critical);

  press();
  EXPECT_TRUE(view->isReleasing);
  EXPECT_EQ(view->auroraClearTrigger.get(), 2);
  goTo(1.0);
  stalling.letGo();  // the first flow continues in the middle of the second one
  scheduler.runReady();
  EXPECT_GT(view->animatedProgress, 0.8);
  goTo(1.0 + 2.9 + 1.5 + rounding);
  EXPECT_FALSE(view->isReleasing);
  EXPECT_EQ(view->postClearSentence.get(), std::nullopt);

  goTo(5.65 + rounding);
  EXPECT_EQ(closes, 2);
  goTo(15.05 + rounding);
  EXPECT_EQ(log.count("handleTap: posted auto-close notification"), 2);
  goTo(40.0);
  EXPECT_EQ(resets(), 1);
}

}  // namespace
}  // namespace vorli
