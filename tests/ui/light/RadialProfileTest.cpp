#include "ambient/AuroraField.h"
#include "tests/fakes/ManualScheduler.h"
#include "ui/light/RadialProfile.h"

#include <array>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

AuroraPicture aurora() {
  fakes::ManualScheduler clock;
  return AuroraField(clock).picture(clock.now(), {1.0, 0.0, 0.0}, 0.0);
}

void expectAlphas(const RadialProfile& profile, double end, const std::array<double, 17>& alphas) {
  EXPECT_NEAR(profile.end(), end, 0.05);
  for (std::size_t i = 0; i < alphas.size(); ++i) {
    const double radius = end * static_cast<double>(i) / 16.0;
    EXPECT_NEAR(profile.at(radius * 0.99999).alpha, alphas[i], 0.002) << "at stop " << i;
  }
}

TEST(RadialProfile, warmCloudAtRestHasItsProfile) {
  expectAlphas(RadialProfile::blurred(aurora().warmCloud.gradient, 14.0), 159.0,
               {0.488, 0.480, 0.460, 0.432, 0.400, 0.364, 0.323, 0.275, 0.221, 0.163, 0.107, 0.059, 0.026,
                0.008, 0.002, 0.0, 0.0});
}

TEST(RadialProfile, swollenWarmCloudHasItsProfile) {
  expectAlphas(RadialProfile::blurred(aurora().warmCloud.gradient, 24.0), 189.0,
               {0.443, 0.436, 0.417, 0.387, 0.348, 0.300, 0.247, 0.190, 0.134, 0.085, 0.048, 0.023, 0.010,
                0.003, 0.001, 0.0, 0.0});
}

TEST(RadialProfile, openBloomHasItsProfile) {
  expectAlphas(RadialProfile::blurred(aurora().bloom.gradient, 14.0), 159.0,
               {0.499, 0.493, 0.476, 0.452, 0.425, 0.394, 0.355, 0.306, 0.248, 0.184, 0.121, 0.066, 0.029,
                0.009, 0.002, 0.0, 0.0});
}

TEST(RadialProfile, leakHasItsProfile) {
  expectAlphas(RadialProfile::blurred(aurora().leak.gradient, 6.0), 98.0,
               {0.810, 0.792, 0.750, 0.697, 0.642, 0.583, 0.519, 0.448, 0.374, 0.300, 0.226, 0.152, 0.082,
                0.030, 0.006, 0.001, 0.0});
}

TEST(RadialProfile, colourIsThatOfTheLightThatMixes) {
  const auto bloom = RadialProfile::blurred(aurora().bloom.gradient, 14.0);
  const auto middle = bloom.at(0.0), side = bloom.at(110.0);
  EXPECT_NEAR(middle.red / middle.alpha, 0.494, 0.03);  // teal in the middle
  EXPECT_NEAR(side.red / side.alpha, 0.369, 0.03);      // green at the side
}

TEST(RadialProfile, isDarkBeyondItsEnd) {
  const auto cloud = RadialProfile::blurred(aurora().warmCloud.gradient, 14.0);
  EXPECT_EQ(cloud.at(160.0).alpha, 0.0F);
}

void expectBetween(const AuroraGradient& gradient, double deviation) {
  const auto from = RadialProfile::blurred(gradient, deviation - 1.0);
  const auto to = RadialProfile::blurred(gradient, deviation + 1.0);
  const auto exact = RadialProfile::blurred(gradient, deviation);
  const auto between = RadialProfile::between(from, to, 0.5);
  constexpr float halfAStep = 0.5F / 255.0F;
  for (int radius = 0; radius < 190; ++radius) {
    EXPECT_NEAR(between.at(radius).alpha, exact.at(radius).alpha, halfAStep) << deviation << " at " << radius;
    EXPECT_NEAR(between.at(radius).green, exact.at(radius).green, halfAStep) << deviation << " at " << radius;
  }
}

TEST(RadialProfile, profileBetweenTwoBlursIsThatOfTheBlurBetween) {
  for (double deviation = 7.0; deviation <= 13.0; deviation += 2.0)
    expectBetween(aurora().bloom.gradient, deviation);
  for (double deviation = 15.0; deviation <= 23.0; deviation += 2.0)
    expectBetween(aurora().warmCloud.gradient, deviation);
}

TEST(RadialProfile, lightOverLightAddsUp) {
  const Premultiplied half = Premultiplied::of({1.0, 1.0, 1.0}, 0.5);
  EXPECT_NEAR(half.over(half).alpha, 0.75, 1e-6);
  EXPECT_NEAR(Premultiplied::of({1.0, 0.0, 0.0}, 1.0).over(half).red, 1.0, 1e-6);
}

}  // namespace
}  // namespace vorli::ui
