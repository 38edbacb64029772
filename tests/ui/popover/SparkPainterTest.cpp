#include "ui/popover/SparkPainter.h"

#include <cmath>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

// Ten pixels to a point, so that places along a radius are exact enough.
constexpr double sparkRatio = 10.0;
constexpr int side = 400, middle = side / 2;

WhiteSparkShower::Sparks one(const WhiteSparkShower::Spark& spark) {
  WhiteSparkShower::Sparks sparks;
  sparks.fill({.opacity = 0.0});
  sparks[3] = spark;
  return sparks;
}

QImage paintedSpark(const WhiteSparkShower::Spark& spark, Appearance appearance, double opacity = 1.0) {
  QImage image(side, side, QImage::Format_RGB32);
  image.fill(appearance == Appearance::dark ? Qt::black : Qt::white);
  paintSparks(image, image.rect(), {middle + 0.5, middle + 0.5}, sparkRatio, one(spark), opacity, appearance);
  return image;
}

// Red of the pixel `points` to the right of a place, which is relative to the ring's centre.
int redAt(const QImage& image, double points, double x = 0.0, double y = 0.0) {
  const auto pixel = [](double place) { return middle + static_cast<int>(std::lround(place * sparkRatio)); };
  return qRed(image.pixel(pixel(x + points), pixel(y)));
}

TEST(SparkPainter, whiteDiscShinesOnADarkGround) {
  const QImage image = paintedSpark({.opacity = 1.0}, Appearance::dark);
  EXPECT_EQ(redAt(image, 0.0), 255);
  EXPECT_EQ(redAt(image, 1.5), 255);
  EXPECT_NEAR(redAt(image, 1.7), 255.0 * 0.5823, 2.0);  // the shadow, from 0.62 at 1.56 on its way to 0.2
  EXPECT_NEAR(redAt(image, 2.6), 255.0 * 0.34, 2.0);
  EXPECT_NEAR(redAt(image, 3.12), 255.0 * 0.2, 2.0);
  EXPECT_NEAR(redAt(image, 4.16), 255.0 * 0.1, 2.0);
  EXPECT_EQ(redAt(image, 5.25), 0);
}

TEST(SparkPainter, calmGlowIsUnderItOnPaper) {
  const QImage image = paintedSpark({.opacity = 1.0}, Appearance::light);
  EXPECT_EQ(redAt(image, 0.0), 255);
  // 0.3833 of the glow, and 0.187 of white over it.
  EXPECT_NEAR(redAt(image, 2.6), 255.0 * (1.0 - 0.3833 * 0.95 * (1.0 - 0.187)), 2.0);
  EXPECT_NEAR(redAt(image, 5.5), 255.0 * (1.0 - 0.1892 * 0.95), 1.5);
  EXPECT_EQ(redAt(image, 12.05), 255);
}

TEST(SparkPainter, isDrawnWhereItHasFlownTo) {
  const QImage image = paintedSpark({.x = -12.0, .y = 9.0, .opacity = 1.0}, Appearance::dark);
  EXPECT_EQ(redAt(image, 0.0), 0);
  EXPECT_EQ(redAt(image, 0.0, -12.0, 9.0), 255);
  EXPECT_NEAR(redAt(image, 2.6, -12.0, 9.0), 255.0 * 0.34, 2.0);
}

TEST(SparkPainter, allOfItScales) {
  const QImage image = paintedSpark({.scale = 0.5, .opacity = 1.0}, Appearance::dark);
  EXPECT_EQ(redAt(image, 0.7), 255);
  EXPECT_NEAR(redAt(image, 1.3), 255.0 * 0.34, 3.0);
  EXPECT_EQ(redAt(image, 2.65), 0);
}

TEST(SparkPainter, opacitiesOfSparkAndContentAreMultiplied) {
  for (const QImage& image : {paintedSpark({.opacity = 0.5}, Appearance::dark),
                              paintedSpark({.opacity = 1.0}, Appearance::dark, 0.5)}) {
    // The disc over its shadow, both at half opacity.
    EXPECT_NEAR(redAt(image, 0.0), 255.0 * (1.0 - 0.5 * 0.6), 2.0);
    EXPECT_NEAR(redAt(image, 2.6), 255.0 * 0.17, 2.0);
  }
}

TEST(SparkPainter, sparkThatIsOutIsNotPainted) {
  EXPECT_EQ(redAt(paintedSpark({.opacity = 0.0}, Appearance::dark), 0.0), 0);
}

}  // namespace
}  // namespace vorli::ui
