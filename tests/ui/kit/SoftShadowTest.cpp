#include "ui/kit/SoftShadow.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QRectF>
#include <QSize>
#include <QTransform>
#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

const QColor shadowBrown(60, 45, 20, 200);
constexpr double radius = 12.0, deviation = 10.0;

QImage drawn(const QRectF& place, const QSize& size, double ratio) {
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  drawSoftShadow(painter, {place, radius}, deviation, shadowBrown, size, ratio);
  return image;
}

QImage blurredWhole(const QRectF& place, const QSize& size, double ratio) {
  QPainterPath path;
  path.addRoundedRect(place, radius, radius);
  return softShadow(path, deviation, shadowBrown, size, QTransform::fromScale(ratio, ratio));
}

int greatestDifference(const QImage& one, const QImage& other) {
  int greatest = 0;
  for (int y = 0; y < one.height(); ++y) {
    for (int x = 0; x < one.width(); ++x)
      greatest = std::max(greatest, std::abs(qAlpha(one.pixel(x, y)) - qAlpha(other.pixel(x, y))));
  }
  return greatest;
}

// An edge between two pixels rounds to either of two neighbouring values.
constexpr int rounding = 1;

TEST(SoftShadow, largeRectangleHasTheShadowOfTheWholeBlurredShape) {
  for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
    const QRectF place(40.0, 30.0, 300.0, 221.0);
    const QSize size(static_cast<int>(380 * ratio), static_cast<int>(290 * ratio));
    EXPECT_LE(greatestDifference(drawn(place, size, ratio), blurredWhole(place, size, ratio)), rounding)
        << ratio;
  }
}

TEST(SoftShadow, rectangleWithoutAMiddleIsBlurredWhole) {
  const QSize size(200, 400);
  const QRectF small(40.0, 40.0, 60.0, 30.0), long_(40.0, 40.0, 60.0, 300.0);
  EXPECT_EQ(drawn(small, size, 1.0), blurredWhole(small, size, 1.0));
  EXPECT_LE(greatestDifference(drawn(long_, size, 1.0), blurredWhole(long_, size, 1.0)), rounding);
}

TEST(SoftShadow, isCutAtTheEdgesOfThePicture) {
  const QRectF place(2.0, 3.0, 296.0, 240.0);
  const QSize size(300, 246);
  EXPECT_LE(greatestDifference(drawn(place, size, 1.0), blurredWhole(place, size, 1.0)), rounding);
}

}  // namespace
}  // namespace vorli::ui
