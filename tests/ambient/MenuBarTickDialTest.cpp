#include "ambient/MenuBarTickDial.h"
#include "tests/base/ExpectColour.h"

#include <cmath>
#include <limits>

namespace vorli {
namespace {

constexpr Colour emptyOnLight{0.0, 0.0, 0.0, 0.22};
constexpr Colour emptyOnDark{1.0, 1.0, 1.0, 0.85};
constexpr Colour faintOnLight{0.0, 0.0, 0.0, 0.16};
constexpr Colour faintOnDark{1.0, 1.0, 1.0, 0.32};

MenuBarTickDial dial(double progress, bool isDark = false, double calmOverlay = 0.0) {
  return {.progress = progress, .isDark = isDark, .calmOverlay = calmOverlay};
}

std::vector<ports::Stroke> strokes(const MenuBarTickDial& dial) {
  return dial.picture(18.0, 1.0).strokes;
}

int filledCount(const MenuBarTickDial& dial) {
  const auto all = strokes(dial);
  return static_cast<int>(std::count_if(
      all.begin(), all.end(), [](const auto& stroke) { return std::abs(stroke.width - 1.6) < 1e-12; }));
}

void expectLine(const ports::Stroke& stroke, double fromX, double fromY, double toX, double toY) {
  EXPECT_NEAR(stroke.fromX, fromX, 1e-4);
  EXPECT_NEAR(stroke.fromY, fromY, 1e-4);
  EXPECT_NEAR(stroke.toX, toX, 1e-4);
  EXPECT_NEAR(stroke.toY, toY, 1e-4);
}

TEST(MenuBarTickDialTest, twelveTicksGoClockwiseFromTheTop) {
  const auto picture = dial(0.0).picture(18.0, 1.0);
  EXPECT_EQ(picture.sidePoints, 18.0);
  ASSERT_EQ(picture.strokes.size(), 12u);
  expectLine(picture.strokes[0], 9.0, 4.2, 9.0, 1.48);
  expectLine(picture.strokes[1], 11.4, 4.84308, 12.76, 2.48749);
  expectLine(picture.strokes[3], 13.8, 9.0, 16.52, 9.0);
  expectLine(picture.strokes[6], 9.0, 13.8, 9.0, 16.52);
  expectLine(picture.strokes[9], 4.2, 9.0, 1.48, 9.0);
}

TEST(MenuBarTickDialTest, theFrameAndThePaddingSetTheRadius) {
  const auto picture = dial(1.0).picture(40.0, 4.0);
  expectLine(picture.strokes[3], 29.6, 20.0, 35.04, 20.0);
  EXPECT_NEAR(picture.strokes[3].width, 3.2, 1e-12);
}

TEST(MenuBarTickDialTest, aTickFillsOnlyWhenItIsWhollyReached) {
  EXPECT_EQ(filledCount(dial(0.0)), 0);
  EXPECT_EQ(filledCount(dial(0.08)), 0);
  EXPECT_EQ(filledCount(dial(0.0833)), 0);
  EXPECT_EQ(filledCount(dial(0.0834)), 1);
  EXPECT_EQ(filledCount(dial(0.9999)), 11);
  EXPECT_EQ(filledCount(dial(1.0)), 12);
}

TEST(MenuBarTickDialTest, progressIsClamped) {
  EXPECT_EQ(filledCount(dial(-0.5)), 0);
  EXPECT_EQ(filledCount(dial(7.0)), 12);
  EXPECT_EQ(filledCount(dial(std::numeric_limits<double>::quiet_NaN())), 0);
}

TEST(MenuBarTickDialTest, aLoneFilledTickHasFullOpacity) {
  expectColour(strokes(dial(0.0834))[0].colour, {0.18, 0.478, 0.302, 1.0});
}

TEST(MenuBarTickDialTest, opacityRisesAlongTheFilledTicks) {
  const auto all = strokes(dial(0.5));
  EXPECT_NEAR(all[0].colour.alpha, 0.7, 1e-12);
  EXPECT_NEAR(all[1].colour.alpha, 0.76, 1e-12);
  EXPECT_NEAR(all[5].colour.alpha, 1.0, 1e-12);
  EXPECT_EQ(all[6].colour, emptyOnLight);
}

TEST(MenuBarTickDialTest, twoFilledTicksTakeTheLeastAndTheFullOpacity) {
  const auto all = strokes(dial(0.2));
  EXPECT_NEAR(all[0].colour.alpha, 0.7, 1e-12);
  EXPECT_NEAR(all[1].colour.alpha, 1.0, 1e-12);
}

TEST(MenuBarTickDialTest, filledAndEmptyTicksDifferInWidth) {
  const auto all = strokes(dial(0.1));
  EXPECT_NEAR(all[0].width, 1.6, 1e-12);
  EXPECT_NEAR(all[1].width, 1.12, 1e-12);
}

TEST(MenuBarTickDialTest, everyStateHasItsColourOnLightAndOnDark) {
  expectColour(strokes(dial(0.5499))[5].colour, {0.18, 0.478, 0.302, 1.0});
  expectColour(strokes(dial(0.55))[5].colour, {0.824, 0.502, 0.145, 1.0});
  expectColour(strokes(dial(0.7999))[8].colour, {0.824, 0.502, 0.145, 1.0});
  expectColour(strokes(dial(0.8))[8].colour, {0.784, 0.22, 0.157, 1.0});
  expectColour(strokes(dial(0.5499, true))[5].colour, {0.369, 0.796, 0.533, 1.0});
  expectColour(strokes(dial(0.55, true))[5].colour, {0.945, 0.525, 0.125, 1.0});
  expectColour(strokes(dial(0.8, true))[8].colour, {0.902, 0.235, 0.157, 1.0});
}

TEST(MenuBarTickDialTest, emptyTicksAreFaintOnLightAndBrightOnDark) {
  EXPECT_EQ(strokes(dial(0.0))[11].colour, emptyOnLight);
  EXPECT_EQ(strokes(dial(0.0, true))[11].colour, emptyOnDark);
}

TEST(MenuBarTickDialTest, aDimmedDialIsEmptyAndFaintWhateverItsProgress) {
  for (const bool isDark : {false, true}) {
    auto dimmed = dial(0.9, isDark);
    dimmed.dimmed = true;
    for (const auto& stroke : strokes(dimmed)) {
      EXPECT_EQ(stroke.colour, isDark ? faintOnDark : faintOnLight);
      EXPECT_NEAR(stroke.width, 1.12, 1e-12);
    }
  }
}

TEST(MenuBarTickDialTest, fullCalmShowsTwoTicksInTheCalmColour) {
  const double progress = MenuBarTickDial::calmedProgress(0.9, 1.0);
  EXPECT_EQ(progress, 0.2);
  const auto light = strokes(dial(progress, false, 1.0));
  const auto dark = strokes(dial(progress, true, 1.0));
  EXPECT_EQ(filledCount(dial(progress, false, 1.0)), 2);
  expectColour(light[1].colour, {0.239, 0.463, 0.447, 1.0});
  expectColour(dark[1].colour, {0.423, 0.659, 0.643, 1.0});
}

TEST(MenuBarTickDialTest, calmedProgressReturnsToTheRingAsTheCalmDecays) {
  EXPECT_EQ(MenuBarTickDial::calmedProgress(0.9, 0.0), 0.9);
  EXPECT_NEAR(MenuBarTickDial::calmedProgress(0.9, 0.5), 0.55, 1e-12);
  EXPECT_NEAR(MenuBarTickDial::calmedProgress(0.05, 1.0), 0.2, 1e-12);
}

TEST(MenuBarTickDialTest, halfCalmIsHalfWayBetweenTheColours) {
  expectColour(strokes(dial(0.9, false, 0.5))[9].colour, {0.5115, 0.3415, 0.302, 1.0});
}

TEST(MenuBarTickDialTest, aTraceOfCalmDrawsThePlainColour) {
  expectColour(strokes(dial(0.9, false, 0.0005))[9].colour, {0.784, 0.22, 0.157, 1.0});
  expectColour(strokes(dial(0.9, false, 0.000999))[9].colour, {0.784, 0.22, 0.157, 1.0});
  expectColour(strokes(dial(0.9, false, 0.001))[9].colour, {0.783455, 0.220243, 0.15729, 1.0});
}

TEST(MenuBarTickDialTest, equalDialsMakeEqualPictures) {
  EXPECT_EQ(dial(0.51).picture(18.0, 1.0), dial(0.57 - 0.05).picture(18.0, 1.0));
  EXPECT_NE(dial(0.51).picture(18.0, 1.0), dial(0.4).picture(18.0, 1.0));
}

}  // namespace
}  // namespace vorli
