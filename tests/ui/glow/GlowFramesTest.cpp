#include "tests/fakes/ManualScheduler.h"
#include "ui/glow/GlowFrames.h"

#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <vector>

namespace vorli::ui {
namespace {

constexpr double never = std::numeric_limits<double>::infinity();

struct GlowFramesTest : testing::Test {
  // A glow whose level rises by `step` from frame to frame.
  void startRising(double step, double restsAt) {
    frames.start(
        [this, step](double) {
          level += step;
          return ports::GlowPicture{};
        },
        restsAt);
  }

  fakes::ManualScheduler scheduler;
  double level = 100.0;
  int shown = 0;
  GlowFrames frames{scheduler, [this](const ports::GlowPicture&) {
                      ++shown;
                      return level;
                    }};
};

TEST_F(GlowFramesTest, showsThirtyFramesASecondWhileTheGlowChanges) {
  startRising(2.0, never);
  EXPECT_EQ(shown, 1);
  scheduler.advance(0.49);
  EXPECT_EQ(shown, 15);
  EXPECT_EQ(frames.count(), 15u);
}

TEST_F(GlowFramesTest, showsTenFramesASecondWhileItHardlyChanges) {
  startRising(1.0, never);
  scheduler.advance(0.49);
  EXPECT_EQ(shown, 6);  // the second one follows the first, which lit up
}

TEST_F(GlowFramesTest, anAnimationWithAnEndNeverSlowsDownAndEndsAtRest) {
  startRising(0.0, scheduler.now() + 0.09);
  scheduler.advance(10.0);
  EXPECT_EQ(shown, 4);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(GlowFramesTest, picturesAreOfTheSchedulersTime) {
  std::vector<double> times;
  const double begun = scheduler.now();
  frames.start(
      [&times](double now) {
        times.push_back(now);
        return ports::GlowPicture{};
      },
      begun);
  EXPECT_EQ(times, std::vector{begun});
  scheduler.advance(1.0);
  frames.showAgain();
  EXPECT_EQ(times, (std::vector{begun, begun + 1.0}));
}

TEST_F(GlowFramesTest, aGlowThatCannotBeShownCostsNoFramesUntilItCan) {
  bool canShow = false;
  GlowFrames hidden{scheduler, [&](const ports::GlowPicture&) {
                      ++shown;
                      return canShow ? std::optional(level) : std::nullopt;
                    }};
  hidden.start([](double) { return ports::GlowPicture{}; }, never);
  scheduler.advance(10.0);
  EXPECT_EQ(shown, 1);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
  canShow = true;
  hidden.showAgain();
  scheduler.advance(0.49);
  EXPECT_EQ(shown, 7);  // at once, then as often as a glow that hardly changes
  canShow = false;
  hidden.showAgain();
  scheduler.advance(10.0);
  EXPECT_EQ(shown, 8);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(GlowFramesTest, showingAgainDoesNotDoubleTheFrames) {
  startRising(2.0, never);
  frames.showAgain();
  EXPECT_EQ(scheduler.pendingTimers(), 1u);
}

TEST_F(GlowFramesTest, stoppedFramesShowNothing) {
  startRising(2.0, never);
  frames.stop();
  frames.showAgain();
  scheduler.advance(10.0);
  EXPECT_EQ(shown, 1);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(GlowFramesTest, aNewAnimationReplacesTheOneInProgress) {
  startRising(2.0, never);
  startRising(2.0, 0.0);
  EXPECT_EQ(shown, 2);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

}  // namespace
}  // namespace vorli::ui
