#include "tests/fakes/ManualScheduler.h"
#include "ui/popover/RingPainter.h"

#include <cmath>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

constexpr double ringRatio = 4.0;
constexpr Colour glassAmber{0.9, 0.6, 0.1};

// The glass alone, without word, dots or arc.
RingPicture glass(double lens = 1.0) {
  RingPicture ring;
  ring.stateColour = glassAmber;
  ring.lens = lens;
  ring.canPolish = true;
  ring.labelOpacity = 0.0;
  return ring;
}

QImage drawn(const RingPicture& ring, Appearance appearance = Appearance::light) {
  return RingPainter().draw(ring, appearance, ringRatio);
}

// Colour at a place that is given in points from the ring's centre.
QColor colourFromCentre(const QImage& image, double x, double y) {
  const double middle = image.width() / 2.0;
  return image.pixelColor(static_cast<int>(std::floor(middle + x * ringRatio)),
                          static_cast<int>(std::floor(middle + y * ringRatio)));
}
double alphaFromCentre(const QImage& image, double x, double y) {
  return static_cast<double>(colourFromCentre(image, x, y).alphaF());
}

struct Glass {
  Appearance appearance;
  double lens, hover, press;
  double upper, lower;  // opacity a quarter of the way down, and three quarters
};

class RingGlass : public testing::TestWithParam<Glass> {};
INSTANTIATE_TEST_SUITE_P(states, RingGlass,
                         testing::Values(Glass{Appearance::light, 1.0, 0.0, 0.0, 0.64025, 0.44075},
                                         Glass{Appearance::light, 1.0, 1.0, 0.0, 0.81775, 0.57325},
                                         Glass{Appearance::light, 1.0, 0.0, 1.0, 0.39175, 0.25525},
                                         Glass{Appearance::light, 0.45, 0.0, 0.0, 0.28811, 0.19834},
                                         Glass{Appearance::light, 0.25, 0.0, 0.0, 0.16006, 0.11019},
                                         Glass{Appearance::dark, 1.0, 0.0, 0.0, 0.100125, 0.060375},
                                         Glass{Appearance::dark, 1.0, 1.0, 0.0, 0.134625, 0.083875},
                                         Glass{Appearance::dark, 1.0, 0.0, 1.0, 0.065625, 0.036875}));

TEST_P(RingGlass, isWhiteAndThinsDownwards) {
  const auto& state = GetParam();
  auto ring = glass(state.lens);
  ring.button.hover = state.hover;
  ring.button.press = state.press;
  ring.button.scales = false;
  const QImage image = drawn(ring, state.appearance);
  EXPECT_NEAR(alphaFromCentre(image, 0.0, -21.0), state.upper, 0.007);
  EXPECT_NEAR(alphaFromCentre(image, 0.0, 21.0), state.lower, 0.007);
  EXPECT_EQ(colourFromCentre(image, 0.0, 0.0).red(), 255);
}

TEST(RingPainter, pointerOnACalmRingLeavesTheGlass) {
  auto ring = glass(0.45);
  ring.canPolish = false;
  ring.button.hover = ring.button.press = 1.0;
  EXPECT_NEAR(alphaFromCentre(drawn(ring), 0.0, -21.0), 0.28811, 0.007);
}

TEST(RingPainter, screenOfAlmostTheSameScaleHasARingOfItsOwn) {
  RingPainter painter;
  const QImage first = painter.draw(glass(), Appearance::light, 1.25);
  const QImage second = painter.draw(glass(), Appearance::light, 1.24);
  ASSERT_EQ(first.size(), second.size());
  EXPECT_EQ(second, RingPainter().draw(glass(), Appearance::light, 1.24));
  EXPECT_NE(second, first);
}

TEST(RingPainter, rimRunsFromWhiteToBrown) {
  const QImage image = drawn(glass());
  EXPECT_GT(alphaFromCentre(image, 0.0, -41.5), 0.97);
  EXPECT_GE(colourFromCentre(image, 0.0, -41.5).red(), 253);
  EXPECT_NEAR(alphaFromCentre(image, 0.0, 41.5), 1.0 - (1.0 - 0.345) * (1.0 - 0.224), 0.02);
  EXPECT_LT(colourFromCentre(image, 0.0, 41.5).blue(), 200);
  EXPECT_EQ(alphaFromCentre(image, 0.0, 43.0), 0.0);
}

TEST(RingPainter, glassShrinksWhileHeldDown) {
  auto ring = glass();
  EXPECT_GT(alphaFromCentre(drawn(ring), 41.5, 0.0), 0.3);
  ring.button.press = 1.0;
  EXPECT_EQ(alphaFromCentre(drawn(ring), 41.5, 0.0), 0.0);
  EXPECT_GT(alphaFromCentre(drawn(ring), 40.5, 0.0), 0.3);
  ring.button.scales = false;
  EXPECT_GT(alphaFromCentre(drawn(ring), 41.5, 0.0), 0.3);
}

TEST(RingPainter, trackIsSixPointsWide) {
  for (const auto& [appearance, alpha] :
       {std::pair(Appearance::light, 0.16), std::pair(Appearance::dark, 0.10)}) {
    const QImage image = drawn(glass(), appearance);
    EXPECT_NEAR(alphaFromCentre(image, 52.0, 0.0), alpha, 0.003);
    EXPECT_NEAR(alphaFromCentre(image, 54.6, 0.0), alpha, 0.003);
    EXPECT_NEAR(alphaFromCentre(image, 49.4, 0.0), alpha, 0.003);
    EXPECT_EQ(alphaFromCentre(image, 55.5, 0.0), 0.0);
    EXPECT_EQ(alphaFromCentre(image, 48.5, 0.0), 0.0);
  }
}

TEST(RingPainter, arcRunsFromItsPaleTailToItsInk) {
  auto ring = glass();
  ring.progress = 0.75;
  const QImage image = drawn(ring);
  // Amber's luma is 0.6327: its ink on paper is 0.7873 of it, and the tail is mixed with 0.42 of the card.
  const double inkRed = 0.9 * 0.7873, tailRed = inkRed + 0.42 * (0.992 - inkRed);
  const double third = 2.0 / 3.0;
  EXPECT_NEAR(colourFromCentre(image, 0.0, 52.0).redF(), tailRed + (inkRed - tailRed) * third, 0.01);
  EXPECT_NEAR(colourFromCentre(image, 52.0, 0.0).redF(), tailRed + (inkRed - tailRed) * third / 2.0, 0.01);
  EXPECT_NEAR(colourFromCentre(image, -54.0, -0.5).redF(), inkRed, 0.01);
}

TEST(RingPainter, beadSitsOnTheEndOfTheArc) {
  auto ring = glass();
  ring.progress = 0.5;
  for (const auto appearance : {Appearance::light, Appearance::dark}) {
    const QImage image = drawn(ring, appearance);
    EXPECT_GT(colourFromCentre(image, 0.0, 52.0).blue(), 200);
    EXPECT_GT(colourFromCentre(image, 1.2, 52.0).blue(), 200);
    EXPECT_LT(colourFromCentre(image, 2.0, 52.0).blue(), 150);
  }
  ring.progress = 0.03;
  const double angle = 0.03 * 2.0 * M_PI;
  const auto end = [&](const QImage& image) {
    return colourFromCentre(image, 52.0 * std::sin(angle), -52.0 * std::cos(angle)).blue();
  };
  EXPECT_LT(end(drawn(ring)), 150);
  ring.progress = 0.0301;
  EXPECT_GT(end(drawn(ring)), 200);
}

TEST(RingPainter, dotsAreOnTheirCircleInTheInkOfTheRing) {
  auto ring = glass(0.0);
  const fakes::ManualScheduler clock;
  DottedReassuranceRing model(clock);
  model.jumpTo(true);
  ring.dots = model.dots(clock.now());
  const QImage image = drawn(ring);
  for (const auto& [x, y] : {std::pair(0.0, -15.0), std::pair(15.0, 0.0), std::pair(-7.5, 12.99)}) {
    EXPECT_NEAR(alphaFromCentre(image, x, y), 0.88, 0.01);
    EXPECT_NEAR(alphaFromCentre(image, x + 0.7, y), 0.88, 0.01);
    EXPECT_EQ(alphaFromCentre(image, x + 1.5, y), 0.0);
    EXPECT_NEAR(colourFromCentre(image, x, y).redF(), 0.9 * 0.7873, 0.01);
  }
  ring.dots[0].opacity = 0.44;
  ring.dots[0].scale = 0.6;
  const QImage coming = drawn(ring);
  EXPECT_NEAR(alphaFromCentre(coming, 0.0, -15.0), 0.44, 0.01);
  EXPECT_EQ(alphaFromCentre(coming, 1.0, -15.0), 0.0);
  ring.dotsScale = 0.5;
  const QImage half = drawn(ring);
  EXPECT_NEAR(alphaFromCentre(half, 7.5, 0.0), 0.88, 0.01);
  EXPECT_EQ(alphaFromCentre(half, 7.5 + 0.8, 0.0), 0.0);  // the dots themselves have half the size
}

TEST(RingPainter, focusLiesInTheGapBetweenGlassAndBand) {
  auto ring = glass();
  EXPECT_EQ(alphaFromCentre(drawn(ring), 45.5, 0.0), 0.0);
  ring.button.focused = true;
  const QImage image = drawn(ring);
  EXPECT_EQ(alphaFromCentre(image, 45.0, 0.0), 1.0);
  EXPECT_EQ(alphaFromCentre(image, 46.0, 0.0), 1.0);
  EXPECT_EQ(alphaFromCentre(image, 44.0, 0.0), 0.0);
  EXPECT_EQ(alphaFromCentre(image, 47.0, 0.0), 0.0);
  EXPECT_NEAR(colourFromCentre(image, 45.5, 0.0).redF(), 0.239, 0.003);
}

TEST(RingPainter, allOfItGrowsInTheBounce) {
  auto ring = glass();
  ring.scale = 1.08;
  const QImage image = drawn(ring);
  EXPECT_NEAR(alphaFromCentre(image, 52.0 * 1.08, 0.0), 0.16, 0.003);
  EXPECT_EQ(alphaFromCentre(image, 52.0, 0.0), 0.0);
  EXPECT_GT(alphaFromCentre(image, 41.5 * 1.08, 0.0), 0.3);
}

TEST(RingPainter, wordIsAsOpaqueAsItsLabel) {
  const auto inkOf = [](double opacity) {
    auto ring = glass(0.0);
    ring.labelOpacity = opacity;
    const QImage image = drawn(ring);
    double sum = 0.0;
    for (double x = -25.0; x < 25.0; x += 0.25) {
      for (double y = -8.0; y < 8.0; y += 0.25) sum += alphaFromCentre(image, x, y);
    }
    return sum;
  };
  EXPECT_GT(inkOf(1.0), 100.0);
  EXPECT_NEAR(inkOf(0.5), inkOf(1.0) / 2.0, inkOf(1.0) * 0.02);
  EXPECT_EQ(inkOf(0.0), 0.0);
}

}  // namespace
}  // namespace vorli::ui
