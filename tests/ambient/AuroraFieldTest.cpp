#include "ambient/AuroraField.h"
#include "tests/fakes/ManualScheduler.h"

namespace vorli {
namespace {

constexpr Colour amber{0.9, 0.6, 0.1};
constexpr double auroraTolerance = 6e-5;

struct AuroraFieldTest : testing::Test {
  AuroraPicture after(double seconds, double calm = 0.0, Movement movement = Movement::kept) {
    scheduler.advanceTo(startedAt + seconds);
    return field.picture(scheduler.now(), amber, calm, movement);
  }
  void trigger() {
    startedAt = scheduler.now();
    field.clearTriggered();
  }

  fakes::ManualScheduler scheduler;
  AuroraField field{scheduler};
  double startedAt = scheduler.now();
};

TEST_F(AuroraFieldTest, onlyTheWarmCloudShowsAtRest) {
  const auto picture = after(0.0);
  EXPECT_EQ(picture.warmCloud.scale, 1.0);
  EXPECT_EQ(picture.warmCloud.opacity, 1.0);
  EXPECT_EQ(picture.warmCloud.blur, 28.0);
  EXPECT_EQ(picture.bloom.opacity, 0.0);
  EXPECT_EQ(picture.leak.opacity, 0.0);
  EXPECT_FALSE(picture.sparks);
  EXPECT_LT(field.restsAt(), scheduler.now());
}

TEST_F(AuroraFieldTest, theLayersFadeOutwardsFromTheirCentre) {
  const auto picture = after(0.0);
  EXPECT_EQ(picture.warmCloud.gradient,
            (AuroraGradient{
                {{{0.0, {0.9, 0.6, 0.1, 0.55}}, {0.5, {0.9, 0.6, 0.1, 0.32}}, {0.9, {0.9, 0.6, 0.1, 0.0}}}},
                130.0}));
  EXPECT_EQ(picture.bloom.gradient, (AuroraGradient{{{{0.0, {0.494, 0.82, 0.804, 0.55}},
                                                      {0.5, {0.369, 0.796, 0.533, 0.36}},
                                                      {0.9, {0.369, 0.796, 0.533, 0.0}}}},
                                                    130.0}));
  EXPECT_EQ(
      picture.leak.gradient,
      (AuroraGradient{
          {{{0.0, {1.0, 1.0, 1.0, 0.88}}, {0.35, {0.749, 0.878, 0.8, 0.55}}, {0.8, {1.0, 1.0, 1.0, 0.0}}}},
          100.0}));
  EXPECT_EQ(picture.leak.blur, 12.0);
}

TEST_F(AuroraFieldTest, theCloudTurnsOnceInEighteenSeconds) {
  field.appear();
  EXPECT_EQ(after(0.0).warmCloud.rotationDegrees, 0.0);
  EXPECT_NEAR(after(4.5).warmCloud.rotationDegrees, 90.0, 1e-9);
  EXPECT_NEAR(after(4.5).bloom.rotationDegrees, -90.0, 1e-9);
  EXPECT_NEAR(after(18.0 + 4.5).warmCloud.rotationDegrees, 90.0, 1e-9);  // forward, not back
  EXPECT_NEAR(after(18.0 + 9.0).warmCloud.rotationDegrees, 180.0, 1e-9);
  EXPECT_LT(field.restsAt(), scheduler.now());
}

TEST_F(AuroraFieldTest, theCalmDimsTheCloudButNeverBelowAShare) {
  EXPECT_DOUBLE_EQ(after(0.0, 0.5).warmCloud.opacity, 0.725);
  EXPECT_DOUBLE_EQ(after(0.0, 1.0).warmCloud.opacity, 0.45);
  EXPECT_DOUBLE_EQ(after(0.0, 5.0).warmCloud.opacity, 0.15);
}

TEST_F(AuroraFieldTest, aPolishSetsOffTheSequence) {
  struct Moment {
    double at, warmScale, warmOpacity, warmBlur, bloomScale, bloomOpacity, bloomBlur, leakScale, leakOpacity;
  };
  trigger();
  for (const auto& at : {
           Moment{0.0, 1.0, 1.0, 28.0, 0.4, 0.0, 14.0, 0.3, 0.0},
           Moment{0.05, 1.0548, 1.0, 28.0, 0.4, 0.0, 14.0, 0.3, 0.0},
           Moment{0.1, 1.08, 1.0, 28.0, 0.4, 0.0, 14.0, 0.3, 0.0},
           Moment{0.45, 1.3676, 0.5207, 41.6929, 0.4, 0.0, 14.0, 0.3, 0.0},
           Moment{0.7, 1.4860, 0.3234, 47.3322, 0.4, 0.0, 14.0, 0.65, 0.475},
           Moment{0.8, 1.5, 0.3, 48.0, 0.4, 0.0, 14.0, 0.9096, 0.8273},
           Moment{0.9, 1.5, 0.3, 48.0, 0.5065, 0.1776, 16.4858, 1.0, 0.95},
           Moment{1.2, 1.5, 0.3, 48.0, 0.7738, 0.6230, 22.7217, 1.4108, 0.2996},
           Moment{1.5, 1.5, 0.3, 48.0, 0.9547, 0.9245, 26.9430, 1.6, 0.0},
           Moment{1.7, 1.5, 0.3, 48.0, 1.0, 1.0, 28.0, 1.6, 0.0},
           Moment{1.95, 1.5473, 0.2054, 48.0, 1.0, 1.0, 28.0, 1.6, 0.0},
           Moment{2.2, 1.65, 0.0, 48.0, 1.0, 1.0, 28.0, 1.6, 0.0},
           Moment{2.6, 1.65, 0.0, 48.0, 1.0, 1.0, 28.0, 1.6, 0.0},
           Moment{2.975, 1.325, 0.5, 38.0, 0.8319, 0.7199, 24.0782, 1.6, 0.0},
           Moment{3.075, 1.1821, 0.7199, 33.6025, 0.7, 0.5, 21.0, 1.6, 0.0},
           Moment{3.35, 1.0, 1.0, 28.0, 0.4213, 0.0355, 14.4971, 1.6, 0.0},
           Moment{3.45, 1.0, 1.0, 28.0, 0.4, 0.0, 14.0, 1.6, 0.0},
       }) {
    const auto picture = after(at.at);
    EXPECT_NEAR(picture.warmCloud.scale, at.warmScale, auroraTolerance) << at.at;
    EXPECT_NEAR(picture.warmCloud.opacity, at.warmOpacity, auroraTolerance) << at.at;
    EXPECT_NEAR(picture.warmCloud.blur, at.warmBlur, auroraTolerance) << at.at;
    EXPECT_NEAR(picture.bloom.scale, at.bloomScale, auroraTolerance) << at.at;
    EXPECT_NEAR(picture.bloom.opacity, at.bloomOpacity, auroraTolerance) << at.at;
    EXPECT_NEAR(picture.bloom.blur, at.bloomBlur, auroraTolerance) << at.at;
    EXPECT_NEAR(picture.leak.scale, at.leakScale, auroraTolerance) << at.at;
    EXPECT_NEAR(picture.leak.opacity, at.leakOpacity, auroraTolerance) << at.at;
  }
}

TEST_F(AuroraFieldTest, theSequenceIsOverAfterItsLastMotion) {
  trigger();
  EXPECT_NEAR(field.restsAt(), startedAt + 3.45, 1e-9);
  const auto resting = after(3.46);
  EXPECT_EQ(resting.warmCloud.opacity, 1.0);
  EXPECT_EQ(resting.bloom.opacity, 0.0);
  for (const auto& spark : *resting.sparks) EXPECT_EQ(spark.opacity, 0.0);
}

TEST_F(AuroraFieldTest, sparksFlyAfterFourTenthsAndAreGoneAfterFourPointTwoSeconds) {
  trigger();
  EXPECT_EQ((*after(0.4).sparks)[0].opacity, 0.0);
  EXPECT_NEAR((*after(0.4 + 0.09).sparks)[0].opacity, 0.5, 1e-9);
  EXPECT_TRUE(after(4.19).sparks);
  EXPECT_FALSE(after(4.21).sparks);
}

TEST_F(AuroraFieldTest, aSecondTriggerStartsOverAndKeepsTheLateStepsOfTheFirst) {
  trigger();
  after(1.2);
  field.clearTriggered();
  const auto again = after(1.2);
  EXPECT_EQ(again.warmCloud.scale, 1.0);
  EXPECT_EQ(again.warmCloud.opacity, 1.0);
  EXPECT_EQ(again.bloom.opacity, 0.0);
  EXPECT_EQ(again.leak.opacity, 0.0);
  EXPECT_NEAR(after(1.2 + 0.9).leak.opacity, 0.95, 1e-9);
  // The first one's way back, at 2.6, overlaps the second one's bloom, and its end removes the sparks.
  EXPECT_LT(after(3.0).bloom.opacity, 0.8);
  EXPECT_GT(after(3.0).warmCloud.opacity, 0.3);
  EXPECT_TRUE(after(4.19).sparks);
  EXPECT_FALSE(after(4.21).sparks);
  // The second one's own way back ends at rest as well.
  const auto resting = after(1.2 + 3.46);
  EXPECT_EQ(resting.warmCloud.opacity, 1.0);
  EXPECT_EQ(resting.bloom.opacity, 0.0);
}

TEST_F(AuroraFieldTest, withoutMovementTheLightsOnlyFade) {
  trigger();
  for (const double at : {0.3, 0.7, 1.2, 1.95, 3.0}) {
    const auto still = after(at, 0.0, Movement::dropped);
    const auto moving = after(at);
    EXPECT_EQ(still.warmCloud.scale, 1.0);
    EXPECT_EQ(still.bloom.scale, 1.0);
    EXPECT_EQ(still.leak.scale, 1.0);
    EXPECT_EQ(still.warmCloud.blur, 28.0);
    EXPECT_EQ(still.bloom.blur, 28.0);
    EXPECT_FALSE(still.sparks);
    EXPECT_EQ(still.warmCloud.opacity, moving.warmCloud.opacity);
    EXPECT_EQ(still.bloom.opacity, moving.bloom.opacity);
    EXPECT_EQ(still.leak.opacity, moving.leak.opacity);
  }
}

TEST_F(AuroraFieldTest, mayBeDestroyedDuringASequence) {
  {
    AuroraField brief(scheduler);
    brief.clearTriggered();
    scheduler.advance(1.0);
  }
  scheduler.advance(10.0);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

}  // namespace
}  // namespace vorli
