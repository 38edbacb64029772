#include "ui/glow/GlowBandPainter.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

const QRect glowScreen(1920, 40, 800, 600);

QImage paintedBand(ScreenEdge edge, const QColor& colour) {
  const QRect band(QPoint(), glowBandGeometry(edge, glowScreen, 100).size());
  QImage image(band.size(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::magenta);
  QPainter painter(&image);
  paintGlowBand(painter, edge, band, colour);
  return image;
}

TEST(GlowBandPainterTest, theBandsLieAlongTheEdgesAndOverlapInTheCorners) {
  EXPECT_EQ(glowBandGeometry(ScreenEdge::top, glowScreen, 100), QRect(1920, 40, 800, 100));
  EXPECT_EQ(glowBandGeometry(ScreenEdge::bottom, glowScreen, 100), QRect(1920, 540, 800, 100));
  EXPECT_EQ(glowBandGeometry(ScreenEdge::left, glowScreen, 100), QRect(1920, 40, 100, 600));
  EXPECT_EQ(glowBandGeometry(ScreenEdge::right, glowScreen, 100), QRect(2620, 40, 100, 600));
}

TEST(GlowBandPainterTest, aBandIsNotDeeperThanItsScreen) {
  EXPECT_EQ(glowBandGeometry(ScreenEdge::bottom, QRect(0, 0, 64, 48), 100), QRect(0, 0, 64, 48));
}

TEST(GlowBandPainterTest, theLightFadesEvenlyFromTheEdgeToTheMiddle) {
  const struct {
    ScreenEdge edge;
    QPoint atEdge, inside;  // the first pixel, and one step inwards
  } bands[] = {{ScreenEdge::top, {7, 0}, {0, 1}},
               {ScreenEdge::bottom, {7, 99}, {0, -1}},
               {ScreenEdge::left, {0, 7}, {1, 0}},
               {ScreenEdge::right, {99, 7}, {-1, 0}}};
  for (const auto& band : bands) {
    const QImage image = paintedBand(band.edge, QColor(240, 134, 32));
    for (int step = 0; step < 100; ++step) {
      const double expected = 255.0 * (1.0 - (step + 0.5) / 100.0);
      EXPECT_NEAR(qAlpha(image.pixel(band.atEdge + band.inside * step)), expected, 1.5) << step;
    }
  }
}

TEST(GlowBandPainterTest, theFarEndKeepsTheColour) {
  const QImage image = paintedBand(ScreenEdge::top, QColor(240, 134, 32));
  const QColor nearlyClear = image.pixelColor(7, 80);  // at a fifth, where the difference is large enough
  EXPECT_NEAR(nearlyClear.red(), 240, 4);
  EXPECT_NEAR(nearlyClear.green(), 134, 4);
  EXPECT_NEAR(nearlyClear.blue(), 32, 4);
}

}  // namespace
}  // namespace vorli::ui
