#include "tests/fakes/ManualScheduler.h"
#include "ui/popover/RingLight.h"

#include <gtest/gtest.h>
#include <utility>

namespace vorli::ui {
namespace {

constexpr Colour haloAmber{0.9, 0.6, 0.1};

// Shows only the halo, at the bottom of its breath.
PopoverPicture halo(Appearance appearance) {
  PopoverPicture picture;
  picture.appearance = appearance;
  picture.haloBreath = 0.0;
  picture.ring.stateColour = haloAmber;
  return picture;
}

// Shows only the cloud of a resting aurora.
PopoverPicture cloud(Appearance appearance) {
  fakes::ManualScheduler clock;
  PopoverPicture picture;
  picture.appearance = appearance;
  picture.contentOpacity = 0.0;  // no halo
  picture.ring.stateColour = haloAmber;
  picture.aurora = AuroraField(clock).picture(clock.now(), haloAmber, 0.0);
  return picture;
}

double sampleAlpha(const PopoverPicture& picture, std::size_t index) {
  RingLight light;
  const auto& samples = light.sample(picture);
  return index < samples.size() ? static_cast<double>(samples[index].alpha) : 0.0;
}

using Shares = std::vector<std::pair<std::size_t, double>>;

// Indices count samples a quarter of a point apart; the first one is an eighth off the centre.
void expectShares(const PopoverPicture& picture, double strength, const Shares& shares) {
  for (const auto& [index, share] : shares) {
    EXPECT_NEAR(sampleAlpha(picture, index), strength * share, 2e-5) << index;
  }
}

const Shares atTheBottomOfABreath{{120, 0.0},      {150, 0.181745}, {169, 0.358789}, {200, 0.856406},
                                  {218, 0.997031}, {242, 0.713623}, {276, 0.339896}, {323, 0.098470},
                                  {350, 0.054525}, {383, 0.000814}, {384, 0.0}};
const Shares atItsHeight{{120, 0.0},      {150, 0.135357}, {169, 0.302678}, {200, 0.752992}, {218, 0.939306},
                         {242, 0.812610}, {276, 0.442589}, {323, 0.152081}, {350, 0.073816}, {383, 0.021922}};

TEST(RingLight, haloIsARingOfLightOutsideOfTheBand) {
  expectShares(halo(Appearance::light), 0.17 * 0.72, atTheBottomOfABreath);
  expectShares(halo(Appearance::dark), 0.24 * 0.72, atTheBottomOfABreath);
}

TEST(RingLight, haloGrowsAndBrightensWithItsBreath) {
  auto picture = halo(Appearance::light);
  picture.haloBreath = 1.0;
  expectShares(picture, 0.17, atItsHeight);
  picture.haloBreath = 0.5;
  EXPECT_NEAR(sampleAlpha(picture, 218), 0.17 * 0.86 * 0.97, 0.17 * 0.86 * 0.03);
}

TEST(RingLight, haloGrowsWithTheRing) {
  auto picture = halo(Appearance::dark);
  picture.ring.scale = 1.08;
  expectShares(picture, 0.24 * 0.72, {{150, 0.080134}, {200, 0.621617}, {242, 0.931251}, {383, 0.04705}});
}

TEST(RingLight, calmAndFoldingDimTheHalo) {
  auto picture = halo(Appearance::light);
  picture.calmIntensity = 1.0;
  expectShares(picture, 0.17 * 0.72 * 0.65, atTheBottomOfABreath);
  picture.calmIntensity = 0.0;
  picture.contentOpacity = 0.5;
  expectShares(picture, 0.17 * 0.72 * 0.5, atTheBottomOfABreath);
}

TEST(RingLight, pointerOnAReadyRingAddsToTheHalo) {
  auto picture = halo(Appearance::light);
  picture.ring.button.hover = 1.0;
  expectShares(picture, 0.17 * 0.72, atTheBottomOfABreath);
  picture.ring.canPolish = true;
  expectShares(picture, 0.17 * 0.72 + 0.08, atTheBottomOfABreath);
}

TEST(RingLight, haloHasTheStatesColour) {
  RingLight light;
  const Premultiplied sample = light.sample(halo(Appearance::light))[218];
  EXPECT_NEAR(sample.red / sample.alpha, 0.9, 1e-5);
  EXPECT_NEAR(sample.green / sample.alpha, 0.6, 1e-5);
  EXPECT_NEAR(sample.blue / sample.alpha, 0.1, 1e-5);
}

TEST(RingLight, polishedRingRestsInItsOwnLight) {
  auto picture = halo(Appearance::light);
  picture.calmIntensity = 1.0;
  expectShares(picture, 0.17 * 0.72 * 0.65, atTheBottomOfABreath);
  picture.ring.rested = 1.0;
  expectShares(picture, 0.17 * 0.72 * 1.8, atTheBottomOfABreath);
}

// The bloom is too small to reach the halo, so the colour there is the halo's own.
TEST(RingLight, warmLightTakesTheColourOfTheRisingCoolOne) {
  for (const auto& [opacity, red] : {std::pair(0.0, 0.9), std::pair(0.5, 0.697), std::pair(1.0, 0.494)}) {
    auto picture = halo(Appearance::light);
    fakes::ManualScheduler clock;
    picture.aurora.bloom = AuroraField(clock).picture(clock.now(), haloAmber, 0.0).bloom;
    picture.aurora.bloom.scale = 0.1;
    picture.aurora.bloom.opacity = opacity;
    RingLight light;
    const Premultiplied sample = light.sample(picture)[218];
    EXPECT_NEAR(sample.red / sample.alpha, red, 1e-3) << opacity;
  }
}

TEST(RingLight, cloudIsHeldBackOnTheCard) {
  EXPECT_NEAR(sampleAlpha(cloud(Appearance::light), 0), 0.488 * 0.64, 0.001);
  EXPECT_NEAR(sampleAlpha(cloud(Appearance::dark), 0), 0.488 * 0.58, 0.001);
  auto dimmed = cloud(Appearance::light);
  dimmed.aurora.warmCloud.opacity = 0.5;
  EXPECT_NEAR(sampleAlpha(dimmed, 0), 0.488 * 0.64 * 0.5, 0.001);
}

TEST(RingLight, cloudHasTheColourThatTheRingHasNow) {
  auto picture = cloud(Appearance::light);
  RingLight light;
  light.sample(picture);
  fakes::ManualScheduler clock;
  picture.aurora = AuroraField(clock).picture(clock.now(), {0.1, 0.2, 0.9}, 0.0);
  const Premultiplied sample = light.sample(picture)[100];
  EXPECT_NEAR(sample.red / sample.alpha, 0.1, 1e-5);
  EXPECT_NEAR(sample.blue / sample.alpha, 0.9, 1e-5);
}

TEST(RingLight, bloomIsHeldBackOnADarkCardAndTheLeakOnNone) {
  for (const auto& [appearance, share] :
       {std::pair(Appearance::light, 1.0), std::pair(Appearance::dark, 0.85)}) {
    auto picture = cloud(appearance);
    picture.aurora.warmCloud.opacity = 0.0;
    picture.aurora.bloom.blur = 28.0;
    picture.aurora.bloom.scale = 1.0;
    picture.aurora.bloom.opacity = 1.0;
    EXPECT_NEAR(sampleAlpha(picture, 0), 0.499 * share, 0.001);
    picture.aurora.bloom.opacity = 0.0;
    picture.aurora.leak.scale = 1.0;
    picture.aurora.leak.opacity = 1.0;
    EXPECT_NEAR(sampleAlpha(picture, 0), 0.810, 0.001);
  }
}

TEST(RingLight, layersArePaintedOverEachOther) {
  auto picture = cloud(Appearance::light);
  picture.aurora.bloom.blur = 28.0;
  picture.aurora.bloom.scale = 1.0;
  picture.aurora.bloom.opacity = 1.0;
  picture.aurora.leak.scale = 1.0;
  picture.aurora.leak.opacity = 0.95;
  const double uncovered = (1.0 - 0.488 * 0.64) * (1.0 - 0.499) * (1.0 - 0.810 * 0.95);
  EXPECT_NEAR(sampleAlpha(picture, 0), 1.0 - uncovered, 0.001);
}

TEST(RingLight, scaleStretchesALayerAfterItsBlur) {
  auto picture = cloud(Appearance::light);
  const double unscaled = (sampleAlpha(picture, 100) + sampleAlpha(picture, 101)) / 2.0;
  picture.aurora.warmCloud.scale = 1.5;
  EXPECT_NEAR((sampleAlpha(picture, 151) + sampleAlpha(picture, 150)) / 2.0, unscaled, 0.001);
}

}  // namespace
}  // namespace vorli::ui
