#include "ui/kit/AppMark.h"

#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

const WindowPalette& lightWindow() {
  return WindowPalette::of(Appearance::light);
}

QColor markColourAt(const QImage& image, double x, double y) {
  return image.pixelColor(static_cast<int>(x * image.width()), static_cast<int>(y * image.height()));
}

TEST(AppMark, isSquareWithItsMarginAround) {
  const QImage image = appMarkImage(128, 8, lightWindow());
  EXPECT_EQ(image.size(), QSize(144, 144));
  EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
  EXPECT_EQ(image.pixelColor(72, 8 + 64 - 58).alpha(), 255);  // just inside the upper edge
}

TEST(AppMark, holdsTheStarInItsMiddle) {
  EXPECT_EQ(markColourAt(appMarkImage(256, 0, lightWindow()), 0.5, 0.5), lightWindow().gleam);
}

TEST(AppMark, coloursOfTheTicksGoOnceAround) {
  const QImage image = appMarkImage(512, 0, lightWindow());
  // The middle of the tick at twelve o'clock, and of the one before it.
  EXPECT_EQ(markColourAt(image, 0.5, 0.5 - 22.5 * 0.77 / 64), lightWindow().mark.firstTick);
  EXPECT_EQ(markColourAt(image, 0.5 - 22.5 * 0.77 * 0.5 / 64, 0.5 - 22.5 * 0.77 * 0.8660254 / 64),
            lightWindow().mark.lastTick);
}

TEST(AppMark, cornersAreRoundAndSidesNearlyStraight) {
  const QImage image = appMarkImage(256, 0, lightWindow());
  EXPECT_LT(markColourAt(image, 0.045, 0.045).alpha(), 60);
  EXPECT_EQ(markColourAt(image, 0.11, 0.11).alpha(), 255);
  EXPECT_EQ(markColourAt(image, 0.04, 0.5).alpha(), 255);
}

TEST(AppMark, shadowFallsBelow) {
  const QImage image = appMarkImage(256, 24, lightWindow());
  const int above = image.pixelColor(152, 24 + 6 - 8).alpha();
  const int below = image.pixelColor(152, 24 + 250 + 8).alpha();
  EXPECT_GT(below, above);
  EXPECT_GT(below, 0);
}

TEST(AppMark, darkMarkIsDark) {
  const QImage image = appMarkImage(128, 0, WindowPalette::of(Appearance::dark));
  EXPECT_LT(markColourAt(image, 0.5, 0.9).lightness(), 60);
}

}  // namespace
}  // namespace vorli::ui
