#include "ui/popover/RingArc.h"

#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

constexpr Colour red{1.0, 0.0, 0.0}, blue{0.0, 0.0, 1.0}, half{0.0, 1.0, 0.0, 0.5};

QImage ring(double progress) {
  QImage image(128, 128, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  RingBand().paint(image, {.progress = progress, .track = half, .head = red, .tail = blue});
  return image;
}

// A point in the middle of the band, at a share of the turn from the top.
QColor arcColourAt(const QImage& image, double share, double radius = 52.0) {
  const double angle = share * 2.0 * M_PI;
  return image.pixelColor(static_cast<int>(64.0 + radius * std::sin(angle)),
                          static_cast<int>(64.0 - radius * std::cos(angle)));
}

TEST(RingArc, emptyRingShowsItsTrackAlone) {
  const QImage image = ring(0.0);
  for (const double share : {0.0, 0.25, 0.5, 0.75}) {
    EXPECT_EQ(arcColourAt(image, share).alpha(), 128);
    EXPECT_EQ(arcColourAt(image, share).green(), 255);
  }
  EXPECT_EQ(arcColourAt(image, 0.3, 46.0).alpha(), 0);
  EXPECT_EQ(arcColourAt(image, 0.3, 58.0).alpha(), 0);
}

TEST(RingArc, tinyProgressIsNotDrawn) {
  EXPECT_EQ(ring(0.004), ring(0.0));
  EXPECT_NE(ring(0.005), ring(0.0));
}

TEST(RingArc, arcRunsClockwiseFromTheTop) {
  const QImage image = ring(0.5);
  EXPECT_EQ(arcColourAt(image, 0.25).alpha(), 255);
  EXPECT_EQ(arcColourAt(image, 0.75).alpha(), 128);
}

TEST(RingArc, fadesFromItsHeadToItsTail) {
  const QImage image = ring(0.5);
  EXPECT_GT(arcColourAt(image, 0.02).blue(), 235);
  EXPECT_NEAR(arcColourAt(image, 0.25).red(), 128, 6);
  EXPECT_GT(arcColourAt(image, 0.48).red(), 235);
}

TEST(RingArc, bothEndsAreRoundAndKeepTheirColour) {
  const QImage image = ring(0.5);
  // Points in the middle of the band, two past either end.
  const double past = 2.0 / (2.0 * M_PI * 52.0);
  EXPECT_GT(arcColourAt(image, 0.5 + past).red(), 250);
  EXPECT_GT(arcColourAt(image, 1.0 - past).blue(), 250);
  EXPECT_EQ(arcColourAt(image, 0.5 + 2.5 * past).alpha(), 128);
}

TEST(RingArc, colourChangesInTheMiddleOfTheEmptyPart) {
  // The arc fills the whole band if the gap is narrower than the two round ends; only the seam shows where.
  constexpr double progress = 0.985;
  const QImage image = ring(progress);
  EXPECT_GT(arcColourAt(image, 0.990).red(), 250);
  EXPECT_GT(arcColourAt(image, 0.998).blue(), 250);
}

TEST(RingArc, fullRingHasNoGap) {
  const QImage image = ring(1.0);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(arcColourAt(image, i / 100.0).alpha(), 255) << i;
}

TEST(RingArc, keptBandIsThatOfANewOneAtAnySize) {
  RingBand kept;
  for (const double radius : {52.0, 40.0, 40.0, 52.0}) {
    const RingArc arc{.radius = radius, .progress = radius / 60.0, .track = half, .head = red, .tail = blue};
    QImage first(128, 128, QImage::Format_ARGB32_Premultiplied);
    first.fill(Qt::transparent);
    QImage second = first.copy();
    kept.paint(first, arc);
    RingBand().paint(second, arc);
    EXPECT_EQ(first, second);
  }
}

}  // namespace
}  // namespace vorli::ui
