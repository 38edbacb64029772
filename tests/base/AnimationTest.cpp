#include "base/Animation.h"

#include <cmath>
#include <numbers>
#include <vector>

namespace vorli {
namespace {

constexpr CubicBezier easeInOut{0.42, 0.0, 0.58, 1.0};
constexpr CubicBezier overshoot{0.22, 0.9, 0.28, 1.06};

TEST(CubicBezierTest, meetsKnownValues) {
  EXPECT_NEAR(easeInOut.at(0.25), 0.129161931, 1e-8);
  EXPECT_NEAR(easeInOut.at(0.5), 0.5, 1e-9);
  EXPECT_NEAR(easeInOut.at(0.75), 0.870838069, 1e-8);
  EXPECT_NEAR((CubicBezier{0.42, 0.0, 1.0, 1.0}).at(0.5), 0.3153568126, 1e-8);
  EXPECT_NEAR((CubicBezier{0.0, 0.0, 0.58, 1.0}).at(0.5), 0.6846431874, 1e-8);
  EXPECT_NEAR((CubicBezier{0.25, 0.1, 0.25, 1.0}).at(0.5), 0.8024033876, 1e-8);
}

TEST(CubicBezierTest, mayOvershootOnItsWay) {
  EXPECT_NEAR(overshoot.at(0.1), 0.3891076949, 1e-8);
  EXPECT_NEAR(overshoot.at(0.25), 0.7755891648, 1e-8);
  EXPECT_NEAR(overshoot.at(0.5), 0.9780835093, 1e-8);
  EXPECT_NEAR(overshoot.at(0.75), 1.0110941668, 1e-8);
  EXPECT_NEAR(overshoot.at(0.7688), 1.0111976601, 1e-8);  // its highest point
  EXPECT_NEAR(overshoot.at(0.9), 1.0071070268, 1e-8);
  EXPECT_EQ(overshoot.at(1.0), 1.0);
}

TEST(CubicBezierTest, itsArgumentIsClamped) {
  EXPECT_EQ(overshoot.at(-0.1), 0.0);
  EXPECT_EQ(overshoot.at(0.0), 0.0);
  EXPECT_EQ(overshoot.at(1.1), 1.0);
}

TEST(CubicBezierTest, aStraightCurveIsTheIdentity) {
  const CubicBezier straight{0.0, 0.0, 1.0, 1.0};
  for (int i = 0; i <= 100; ++i) EXPECT_NEAR(straight.at(i / 100.0), i / 100.0, 1e-9);
}

TEST(CubicBezierTest, steepCurvesAreSolvedToo) {
  // With one control above the other, the slope of x vanishes in the middle, where Newton's step fails.
  const CubicBezier steep{1.0, 0.0, 0.0, 1.0};
  EXPECT_NEAR(steep.at(0.5), 0.5, 1e-6);
  EXPECT_NEAR(steep.at(0.25), 1.0 - steep.at(0.75), 1e-6);
  double last = 0.0;
  for (int i = 1; i <= 1000; ++i) {
    const double y = steep.at(i / 1000.0);
    EXPECT_GE(y, last);
    last = y;
  }
}

TEST(AnimationTest, theNamedCurvesAreTheSystems) {
  EXPECT_EQ(Animation::linear(2.0).curve, (CubicBezier{0.0, 0.0, 1.0, 1.0}));
  EXPECT_EQ(Animation::easeIn(2.0).curve, (CubicBezier{0.42, 0.0, 1.0, 1.0}));
  EXPECT_EQ(Animation::easeOut(2.0).curve, (CubicBezier{0.0, 0.0, 0.58, 1.0}));
  EXPECT_EQ(Animation::easeInOut(2.0).curve, easeInOut);
  EXPECT_EQ(Animation::standard(2.0).curve, (CubicBezier{0.25, 0.1, 0.25, 1.0}));
  EXPECT_EQ(Animation::timingCurve(overshoot, 2.0).curve, overshoot);
  EXPECT_EQ(Animation::easeIn(2.0).durationSeconds, 2.0);
}

TEST(AnimationTest, aCurveStretchesOverItsDuration) {
  const auto animation = Animation::easeInOut(2.0);
  EXPECT_EQ(animation.passSeconds(), 2.0);
  EXPECT_EQ(animation.activeSeconds(), 2.0);
  EXPECT_EQ(animation.progress(-0.1), 0.0);
  EXPECT_EQ(animation.progress(0.0), 0.0);
  EXPECT_NEAR(animation.progress(0.5), 0.129161931, 1e-8);
  EXPECT_NEAR(animation.progress(1.0), 0.5, 1e-9);
  EXPECT_LT(animation.progress(1.9999), 1.0);
  EXPECT_EQ(animation.progress(2.0), 1.0);
  EXPECT_EQ(animation.progress(1e9), 1.0);
}

TEST(AnimationTest, anAnimationWithoutDurationEndsAtOnce) {
  EXPECT_EQ(Animation::linear(0.0).progress(0.0), 1.0);
  EXPECT_EQ(Animation::linear(-1.0).progress(0.0), 1.0);
  EXPECT_EQ(Animation::spring(0.0, 0.5).progress(0.0), 1.0);
}

TEST(AnimationTest, aDelayIsKeptAndAddsUp) {
  EXPECT_EQ(Animation::linear(1.0).delaySeconds, 0.0);
  EXPECT_EQ(Animation::linear(1.0).delayed(0.4).delayed(0.1).delaySeconds, 0.5);
  EXPECT_EQ(Animation::linear(1.0).delayed(0.4).activeSeconds(), 1.0);
}

TEST(AnimationTest, repeatedPassesStartAnewEachTime) {
  const auto animation = Animation::linear(2.0).repeated(3, Animation::Reversal::none);
  EXPECT_EQ(animation.activeSeconds(), 6.0);
  EXPECT_NEAR(animation.progress(1.0), 0.5, 1e-9);
  EXPECT_NEAR(animation.progress(1.999999), 1.0, 1e-6);
  EXPECT_NEAR(animation.progress(2.0), 0.0, 1e-9);
  EXPECT_NEAR(animation.progress(4.5), 0.25, 1e-9);
  EXPECT_EQ(animation.progress(6.0), 1.0);
}

TEST(AnimationTest, autoreverseRunsEverySecondPassBackwards) {
  const auto animation = Animation::linear(2.0).repeated(4, Animation::Reversal::autoreverse);
  EXPECT_NEAR(animation.progress(0.5), 0.25, 1e-9);
  EXPECT_NEAR(animation.progress(2.0), 1.0, 1e-9);
  EXPECT_NEAR(animation.progress(2.5), 0.75, 1e-9);
  EXPECT_NEAR(animation.progress(4.0), 0.0, 1e-9);
  EXPECT_NEAR(animation.progress(4.5), 0.25, 1e-9);
  EXPECT_NEAR(animation.progress(7.999), 0.0005, 1e-9);
  EXPECT_EQ(animation.progress(8.0), 1.0);  // at rest on what was set
}

TEST(AnimationTest, repeatedForeverNeverRests) {
  const auto animation = Animation::easeInOut(1.0).repeatedForever(Animation::Reversal::autoreverse);
  EXPECT_EQ(animation.activeSeconds(), INFINITY);
  EXPECT_NEAR(animation.progress(1'000'000.25), 0.129161931, 1e-6);
  EXPECT_NEAR(animation.progress(1'000'001.25), 0.870838069, 1e-6);
}

TEST(SpringTest, theResponseIsThePeriodOfAnUndampedSpring) {
  const auto spring = Animation::spring(2.0, 0.0);
  EXPECT_EQ(spring.activeSeconds(), INFINITY);
  EXPECT_NEAR(spring.progress(0.5), 1.0, 1e-9);
  EXPECT_NEAR(spring.progress(1.0), 2.0, 1e-9);
  EXPECT_NEAR(spring.progress(2.0), 0.0, 1e-9);
  EXPECT_NEAR(spring.progress(101.0), 2.0, 1e-6);
}

TEST(SpringTest, dampingSetsTheOvershootOfAnUnderdampedSpring) {
  const auto spring = Animation::spring(0.34, 0.72);
  // The first top of a spring from rest: after half a damped period, by exp(-pi zeta / sqrt(1 - zeta^2)).
  const double root = std::sqrt(1.0 - 0.72 * 0.72);
  const double top = 0.34 / 2.0 / root;
  EXPECT_NEAR(spring.progress(top), 1.0384, 1e-4);
  EXPECT_LT(spring.progress(top - 0.01), spring.progress(top));
  EXPECT_LT(spring.progress(top + 0.01), spring.progress(top));
}

TEST(SpringTest, startsFromRestUnlessItIsGivenASpeed) {
  for (const double damping : {0.3, 0.72, 1.0}) {
    const auto spring = Animation::spring(0.5, damping);
    EXPECT_EQ(spring.progress(0.0), 0.0);
    EXPECT_NEAR(spring.progress(1e-6) / 1e-6, 0.0, 1e-3) << damping;
    EXPECT_NEAR(spring.progress(1e-6, 3.0) / 1e-6, 3.0, 1e-3) << damping;
  }
}

TEST(SpringTest, aCriticallyDampedSpringNeverOvershoots) {
  const auto spring = Animation::spring(1.0, 1.0);
  const double omega = 2.0 * std::numbers::pi;
  EXPECT_NEAR(spring.progress(0.25), 1.0 - std::exp(-omega / 4.0) * (1.0 + omega / 4.0), 1e-12);
  EXPECT_NEAR(spring.progress(0.25), 0.46558, 1e-5);
  double last = 0.0;
  for (double t = 0.0; t < 2.0; t += 0.01) {
    EXPECT_GE(spring.progress(t), last);
    EXPECT_LE(spring.progress(t), 1.0);
    last = spring.progress(t);
  }
}

TEST(SpringTest, moreDampingThanCriticalCountsAsCritical) {
  EXPECT_EQ(Animation::spring(1.0, 1.5).progress(0.3), Animation::spring(1.0, 1.0).progress(0.3));
  EXPECT_EQ(Animation::spring(1.0, 1.5).activeSeconds(), Animation::spring(1.0, 1.0).activeSeconds());
}

TEST(SpringTest, restsWhereItStaysWithinAThousandth) {
  for (const double damping : {0.2, 0.5, 0.72, 0.78, 0.9, 1.0}) {
    const auto spring = Animation::spring(0.42, damping);
    const double rest = spring.activeSeconds();
    EXPECT_NEAR(spring.progress(rest - 1e-9), 1.0, 0.00101) << damping;
    EXPECT_EQ(spring.progress(rest), 1.0) << damping;
    EXPECT_GT(rest, 0.42) << damping;
    EXPECT_LT(rest, 6.0) << damping;
  }
}

TEST(WithAnimationTest, theInnermostAnimationAppliesAndTheOuterOneIsRestored) {
  std::vector<double> durations;
  const auto note = [&] {
    const auto& current = detail::currentAnimation();
    durations.push_back(current ? current->durationSeconds : -1.0);
  };
  note();
  withAnimation(Animation::linear(1.0), [&] {
    note();
    withAnimation(Animation::linear(2.0), note);
    withoutAnimation(note);
    note();
  });
  note();
  EXPECT_EQ(durations, (std::vector<double>{-1.0, 1.0, 2.0, -1.0, 1.0, -1.0}));
}

}  // namespace
}  // namespace vorli
