#include "ambient/EdgeGlowController.h"
#include "tests/fakes/Publish.h"
#include "tests/polish/PolishFixture.h"

#include <limits>

namespace vorli {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

struct EdgeGlowControllerTest : PolishFixture {
  EdgeGlowControllerTest() { publish(0.5); }

  // Acts like the end of a tick.
  void publish(double progress) {
    fakes::publish(monitor.memory, monitor.memory.get());
    fakes::publish(monitor.ringProgress, progress);
    scheduler.runReady();
  }
  double opacityAfter(double seconds) const { return window.pictureAt(scheduler.now() + seconds).opacity; }
  bool observes() const {
    return window.isObserved() && workspace.hasSubscribers(ports::ApplicationEvent::activated);
  }

  fakes::GlowOverlay window;
  EdgeGlowController glow{{scheduler, window, workspace, motion, monitor, clearState}};
};

TEST_F(EdgeGlowControllerTest, isOffAtFirst) {
  EXPECT_FALSE(glow.enabled());
  publish(1.0);
  EXPECT_TRUE(window.builds.empty());
  EXPECT_FALSE(observes());
}

TEST_F(EdgeGlowControllerTest, coversTheScreenOnceEnabledAndShowsNothingBelowTheEdge) {
  glow.enable();
  EXPECT_TRUE(glow.enabled());
  EXPECT_EQ(window.builds, std::vector{100.0});
  EXPECT_TRUE(observes());
  publish(0.8999);
  EXPECT_TRUE(window.restTimes.empty());  // no frame at all
}

TEST_F(EdgeGlowControllerTest, theRingOfTheFinishedTickLightsIt) {
  glow.enable();
  publish(0.95);
  EXPECT_EQ(glow.state().progress.get(), 0.95);
  EXPECT_EQ(window.restTimes, std::vector{infinity});
  EXPECT_GT(opacityAfter(1.2), 0.335 * 0.85 - 1e-9);
  EXPECT_LE(opacityAfter(1.2), 0.335);
}

TEST_F(EdgeGlowControllerTest, anAlreadyHighRingLightsItAtOnce) {
  publish(1.0);
  glow.enable();
  EXPECT_EQ(window.restTimes, std::vector{infinity});
  EXPECT_EQ(opacityAfter(0.0), 0.0);
  EXPECT_NEAR(opacityAfter(4.5), 0.45, 1e-6);
}

TEST_F(EdgeGlowControllerTest, enablingTakesBothValuesBeforeTheNextTurnOfTheLoop) {
  publish(0.97);
  fakes::publish(clearState.calmIntensity, 0.5);
  glow.enable();
  EXPECT_EQ(glow.state().progress.get(), 0.97);
  EXPECT_EQ(glow.state().calm.get(), 0.5);
}

TEST_F(EdgeGlowControllerTest, belowTheEdgeItFadesAndRests) {
  glow.enable();
  publish(1.0);
  scheduler.advance(5.0);
  publish(0.8);
  EXPECT_NEAR(window.restTimes.back(), scheduler.now() + 1.2, 1e-9);
  EXPECT_NEAR(opacityAfter(1.2), 0.0, 1e-9);
}

TEST_F(EdgeGlowControllerTest, theCalmDimsIt) {
  glow.enable();
  publish(1.0);
  scheduler.advance(5.0);
  fakes::publish(clearState.calmIntensity, 1.0);
  scheduler.runReady();
  EXPECT_EQ(glow.state().calm.get(), 1.0);
  EXPECT_NEAR(opacityAfter(8.5), 0.45 * 0.3, 1e-6);  // at the peak of the second breath
  EXPECT_EQ(window.restTimes.size(), 1u);            // the frames in progress show it
}

TEST_F(EdgeGlowControllerTest, onlyALitGlowFollowsARisingCalmAtTheDisplaysPace) {
  glow.enable();
  int changes = 0;
  const auto following = glow.state().calm.subscribeToChanges([&](double) { ++changes; });
  const auto changesOfARise = [&] {
    changes = 0;
    fakes::publish(clearState.calmIntensity, 0.0);
    clearState.runCeremony(0.9, 300.0);
    scheduler.advance(0.9);
    EXPECT_EQ(glow.state().calm.get(), 1.0);
    return changes;
  };
  EXPECT_LE(changesOfARise(), 8);
  publish(1.0);
  EXPECT_GE(changesOfARise(), 50);
  publish(0.5);
  EXPECT_LE(changesOfARise(), 8);
}

TEST_F(EdgeGlowControllerTest, enablingAgainChangesNothing) {
  glow.enable();
  publish(1.0);
  glow.enable();
  EXPECT_EQ(window.builds.size(), 1u);
  EXPECT_EQ(window.restTimes.size(), 1u);
}

TEST_F(EdgeGlowControllerTest, disablingTakesEverythingAway) {
  glow.enable();
  publish(1.0);
  glow.disable();
  EXPECT_FALSE(glow.enabled());
  EXPECT_EQ(window.removals, 1);
  EXPECT_FALSE(observes());
  publish(0.92);
  fakes::publish(clearState.calmIntensity, 0.4);
  scheduler.runReady();
  EXPECT_EQ(glow.state().progress.get(), 1.0);
  EXPECT_EQ(glow.state().calm.get(), 0.0);
  EXPECT_EQ(window.restTimes.size(), 1u);
}

TEST_F(EdgeGlowControllerTest, offAndOnBuildsANewWindowWhoseBreathBeginsAnew) {
  glow.enable();
  publish(1.0);
  scheduler.advance(2.0);
  glow.disable();
  glow.enable();
  EXPECT_EQ(window.builds.size(), 2u);
  EXPECT_NEAR(opacityAfter(0.0), 0.45 * 0.85, 1e-9);
  EXPECT_NEAR(opacityAfter(4.5), 0.45, 1e-6);
}

TEST_F(EdgeGlowControllerTest, disablingADisabledGlowDoesNothing) {
  glow.disable();
  EXPECT_EQ(window.removals, 0);
}

TEST_F(EdgeGlowControllerTest, itFollowsTheScreenThatTheUserWorksOn) {
  glow.enable();
  const ports::ScreenFrame second{1920.0, 0.0, 1280.0, 1024.0};
  window.screen = second;
  workspace.tell(ports::ApplicationEvent::activated, {});
  EXPECT_EQ(window.moves, 0);  // in its own task
  scheduler.runReady();
  EXPECT_EQ(window.frame(), second);

  window.screen = {0.0, 0.0, 1920.0, 1080.0};
  workspace.tellSpaceChange();
  scheduler.runReady();
  EXPECT_EQ(window.frame(), window.screen);

  window.screen.width = 1600.0;
  window.tellScreens();
  scheduler.runReady();
  EXPECT_EQ(window.frame().width, 1600.0);
  EXPECT_EQ(window.moves, 3);

  window.tellScreens();
  scheduler.runReady();
  EXPECT_EQ(window.moves, 3);
}

TEST_F(EdgeGlowControllerTest, aPendingCheckDoesNothingOnceDisabled) {
  glow.enable();
  window.screen.width = 1600.0;
  window.tellScreens();
  glow.disable();
  scheduler.runReady();
  EXPECT_EQ(window.moves, 0);
}

TEST_F(EdgeGlowControllerTest, withoutAScreenItFollowsTheMonitorUnseenUntilTheSettingIsTurned) {
  window.hasMainScreen = false;
  glow.enable();
  publish(1.0);
  EXPECT_EQ(glow.state().progress.get(), 1.0);
  EXPECT_TRUE(window.restTimes.empty());

  window.hasMainScreen = true;
  window.tellScreens();
  scheduler.runReady();
  EXPECT_EQ(window.moves, 0);
  glow.disable();
  EXPECT_EQ(window.removals, 0);
  glow.enable();
  EXPECT_EQ(window.restTimes, std::vector{infinity});
}

TEST_F(EdgeGlowControllerTest, withLessMovementTheLightStaysStill) {
  motion.setReduced(true);
  glow.enable();
  publish(1.0);
  EXPECT_NEAR(window.restTimes.back(), scheduler.now() + 1.2, 1e-9);
  EXPECT_NEAR(opacityAfter(1.2), 0.45, 1e-9);
  scheduler.advance(5.0);
  motion.setReduced(false);
  EXPECT_EQ(window.restTimes.back(), infinity);
}

TEST_F(EdgeGlowControllerTest, withLessMovementTheLightIsBackAfterOffAndOn) {
  motion.setReduced(true);
  glow.enable();
  publish(1.0);
  scheduler.advance(5.0);
  glow.disable();
  glow.enable();
  EXPECT_NEAR(opacityAfter(0.0), 0.45, 1e-9);
  publish(1.0);  // a ring that does not move
  scheduler.advance(60.0);
  EXPECT_NEAR(opacityAfter(0.0), 0.45, 1e-9);
}

TEST_F(EdgeGlowControllerTest, withLessMovementACalmThatFadesIsFollowedByTheFramesUnderWay) {
  motion.setReduced(true);
  glow.enable();
  publish(1.0);
  scheduler.advance(5.0);
  const auto before = window.restTimes.size();
  for (int i = 1; i <= 600; ++i) {
    fakes::publish(clearState.calmIntensity, 1.0 - i / 600.0);
    scheduler.advance(0.1);
    EXPECT_GT(window.restTimes.back(), scheduler.now());  // there is always a next frame
  }
  EXPECT_LE(window.restTimes.size() - before, 52u);  // one for each visible change, which takes 1.2 s
  scheduler.advance(1.2);
  EXPECT_NEAR(opacityAfter(0.0), 0.45, 1e-9);
  EXPECT_LE(window.restTimes.back(), scheduler.now());
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

}  // namespace
}  // namespace vorli
