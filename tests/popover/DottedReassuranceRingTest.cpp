#include "popover/DottedReassuranceRing.h"
#include "tests/fakes/ManualScheduler.h"

namespace vorli {
namespace {

struct DottedReassuranceRingTest : testing::Test {
  auto dots(double after, Movement movement = Movement::kept) const {
    return ring.dots(scheduler.now() + after, movement);
  }

  fakes::ManualScheduler scheduler;
  DottedReassuranceRing ring{scheduler};
};

TEST_F(DottedReassuranceRingTest, twelveDotsLieOnACircleWithTheFirstAtTheTop) {
  const auto all = dots(0.0);
  ASSERT_EQ(all.size(), 12u);
  EXPECT_NEAR(all[0].x, 0.0, 1e-9);
  EXPECT_NEAR(all[0].y, -15.0, 1e-9);
  EXPECT_NEAR(all[3].x, 15.0, 1e-9);
  EXPECT_NEAR(all[3].y, 0.0, 1e-9);
  EXPECT_NEAR(all[7].x, -7.5, 1e-9);
  EXPECT_NEAR(all[7].y, 12.990381, 1e-6);
}

TEST_F(DottedReassuranceRingTest, hiddenDotsAreSmallAndUnseen) {
  EXPECT_FALSE(ring.isVisible());
  for (const auto& dot : dots(0.0)) {
    EXPECT_EQ(dot.opacity, 0.0);
    EXPECT_EQ(dot.scale, 0.6);
  }
  EXPECT_EQ(ring.scale(scheduler.now()), 0.94);
  EXPECT_LT(ring.restsAt(), scheduler.now());
}

TEST_F(DottedReassuranceRingTest, dotsSpringUpOneAfterTheOther) {
  ring.setVisible(true);
  EXPECT_NEAR(dots(0.05)[0].opacity, 0.88 * 0.268919, 1e-5);
  EXPECT_NEAR(dots(0.05)[0].scale, 0.6 + 0.4 * 0.268919, 1e-5);
  EXPECT_NEAR(dots(0.1)[0].opacity, 0.88 * 0.661914, 1e-5);
  EXPECT_NEAR(ring.scale(scheduler.now() + 0.1), 0.94 + 0.06 * 0.502909, 1e-5);
  for (std::size_t i = 0; i < 12; ++i) {
    const double start = 0.024 * static_cast<double>(i);
    EXPECT_EQ(dots(start)[i].opacity, 0.0) << i;
    EXPECT_NEAR(dots(start + 0.1)[i].opacity, 0.88 * 0.661914, 1e-5) << i;
  }
  const auto resting = ring.dots(ring.restsAt());
  for (const auto& dot : resting) {
    EXPECT_EQ(dot.opacity, 0.88);
    EXPECT_EQ(dot.scale, 1.0);
  }
  EXPECT_EQ(ring.scale(ring.restsAt()), 1.0);
}

TEST_F(DottedReassuranceRingTest, hidingTakesAllDotsTogether) {
  ring.setVisible(true);
  scheduler.advance(5.0);
  ring.setVisible(false);
  for (const auto& dot : dots(0.08)) EXPECT_NEAR(dot.opacity, 0.88 * (1.0 - 0.684643), 1e-5);
  for (const auto& dot : dots(0.16)) {
    EXPECT_EQ(dot.opacity, 0.0);
    EXPECT_EQ(dot.scale, 0.6);
  }
  EXPECT_EQ(ring.scale(ring.restsAt() + 1e-6), 0.94);
}

TEST_F(DottedReassuranceRingTest, settingTheCurrentStateStartsNothing) {
  ring.setVisible(true);
  scheduler.advance(5.0);
  ring.setVisible(true);
  EXPECT_LT(ring.restsAt(), scheduler.now());
}

TEST_F(DottedReassuranceRingTest, withoutMovementTheDotsOnlyFade) {
  ring.setVisible(true);
  for (const auto& dot : dots(0.05, Movement::dropped)) EXPECT_EQ(dot.scale, 1.0);
  EXPECT_NEAR(dots(0.05, Movement::dropped)[0].opacity, 0.88 * 0.268919, 1e-5);
  EXPECT_EQ(ring.scale(scheduler.now() + 0.05, Movement::dropped), 1.0);
}

}  // namespace
}  // namespace vorli
