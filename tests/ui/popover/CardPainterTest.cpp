#include "ui/popover/CardPainter.h"

#include <QPainter>
#include <cmath>
#include <gtest/gtest.h>
#include <tuple>

namespace vorli::ui {
namespace {

constexpr double tolerance = 0.002;

// Of 16 bits a component: the shadow is made of thin layers, which 8 bits would round away one by one.
QImage clear(int height, QImage::Format format = QImage::Format_RGBA64_Premultiplied) {
  QImage image(318, height, format);
  image.fill(Qt::transparent);
  return image;
}

void paintShadow(QImage& image, const QRectF& card, Appearance appearance) {
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  CardPainter().paintShadow(painter, card, QRectF(image.rect()), appearance, 1.0);
}

double alphaAt(const QImage& image, int x, int y) {
  return static_cast<double>(image.pixelColor(x, y).alphaF());
}

// Too low to be put together from slices.
constexpr QRectF card{24.0, 16.0, 270.0, 95.0};

struct Expected {
  Appearance appearance;
  // Alpha in the middle of the pixel that far outside of the card.
  double left1, left2, left8, left20, below3, below20, below30, above4, above10;
};

class CardShadow : public testing::TestWithParam<Expected> {};
INSTANTIATE_TEST_SUITE_P(appearances, CardShadow,
                         testing::Values(Expected{Appearance::light, 0.08154, 0.07119, 0.03513, 0.00478,
                                                  0.12884, 0.02697, 0.00478, 0.01468, 0.00478},
                                         Expected{Appearance::dark, 0.20991, 0.17843, 0.08678, 0.01181,
                                                  0.32226, 0.06664, 0.01181, 0.03626, 0.01181}));

TEST_P(CardShadow, fallsOffAsABellCurve) {
  const auto& expected = GetParam();
  QImage image = clear(170);
  paintShadow(image, card, expected.appearance);
  constexpr int middleX = 24 + 135, middleY = 16 + 47, bottom = 16 + 95;
  EXPECT_NEAR(alphaAt(image, 24 - 2, middleY), expected.left1, tolerance);
  EXPECT_NEAR(alphaAt(image, 24 - 3, middleY), expected.left2, tolerance);
  EXPECT_NEAR(alphaAt(image, 24 - 9, middleY), expected.left8, tolerance);
  EXPECT_NEAR(alphaAt(image, 24 - 21, middleY), expected.left20, tolerance);
  EXPECT_NEAR(alphaAt(image, 24 + 270 + 8, middleY), expected.left8, tolerance);
  EXPECT_NEAR(alphaAt(image, middleX, bottom + 3), expected.below3, tolerance);
  EXPECT_NEAR(alphaAt(image, middleX, bottom + 20), expected.below20, tolerance);
  EXPECT_NEAR(alphaAt(image, middleX, bottom + 30), expected.below30, tolerance);
  EXPECT_NEAR(alphaAt(image, middleX, 16 - 5), expected.above4, tolerance);
  EXPECT_NEAR(alphaAt(image, middleX, 16 - 11), expected.above10, tolerance);
}

TEST(CardPainter, shadowIsBrownOnPaperAndBlackOnCharcoal) {
  QImage light = clear(170), dark = clear(170);
  paintShadow(light, card, Appearance::light);
  paintShadow(dark, card, Appearance::dark);
  const QColor brown = light.pixelColor(24 + 135, 16 + 95 + 5),
               black = dark.pixelColor(24 + 135, 16 + 95 + 5);
  EXPECT_NEAR(brown.redF(), 0.22, 0.01);
  EXPECT_NEAR(brown.greenF(), 0.17, 0.01);
  EXPECT_NEAR(brown.blueF(), 0.11, 0.01);
  EXPECT_EQ(black.redF(), 0.0F);
}

TEST(CardPainter, tallCardIsPutTogetherFromTheSameShadow) {
  QImage low = clear(170), tall = clear(380), taller = clear(380);
  paintShadow(low, card, Appearance::dark);
  paintShadow(tall, {24.0, 16.0, 270.0, 97.0}, Appearance::dark);
  paintShadow(taller, {24.0, 16.0, 270.0, 304.0}, Appearance::dark);
  for (const int x : {2, 12, 22, 23, 24 + 135, 24 + 275}) {
    for (const int fromTop : {4, 10, 15, 40}) {
      EXPECT_NEAR(alphaAt(taller, x, fromTop), alphaAt(tall, x, fromTop), 1e-4) << x << ' ' << fromTop;
    }
    for (const int below : {1, 10, 25}) {
      EXPECT_NEAR(alphaAt(taller, x, 320 + below), alphaAt(tall, x, 113 + below), 1e-4) << x << ' ' << below;
      EXPECT_NEAR(alphaAt(tall, x, 113 + below), alphaAt(low, x, 111 + below), 0.03) << x << ' ' << below;
    }
    EXPECT_NEAR(alphaAt(taller, x, 160), alphaAt(taller, x, 200), 1e-4) << x;
  }
}

// Where a point is no whole number of pixels. A low card is drawn in one piece.
TEST(CardPainter, tallCardIsFramedAsSharplyAsALowOne) {
  constexpr double low = 88.0, tall = 304.0, top = 16.0;
  for (const double pixelRatio : {1.25, 1.5, 1.75}) {
    const auto framed = [pixelRatio](double height) {
      QImage image(QSize(318, 380) * pixelRatio, QImage::Format_RGBA64_Premultiplied);
      image.fill(Qt::transparent);
      QPainter painter(&image);
      painter.scale(pixelRatio, pixelRatio);
      painter.setRenderHint(QPainter::Antialiasing);
      const QRectF all({0.0, 0.0}, QSizeF(318.0, 380.0));
      CardPainter().paintShadow(painter, {24.0, top, 270.0, height}, all, Appearance::dark, pixelRatio);
      return image;
    };
    const QImage lowImage = framed(low), tallImage = framed(tall);
    const int middle = lowImage.width() / 2;
    const auto row = [pixelRatio](double y) { return static_cast<int>(std::lround(y * pixelRatio)); };
    for (const int below : {0, 1, 2, 3}) {
      EXPECT_NEAR(alphaAt(tallImage, middle, row(top + tall) + below),
                  alphaAt(lowImage, middle, row(top + low) + below), 0.035)
          << pixelRatio << ' ' << below;
    }
    for (const int above : {1, 2}) {
      EXPECT_NEAR(alphaAt(tallImage, middle, row(top) - above), alphaAt(lowImage, middle, row(top) - above),
                  0.035)
          << pixelRatio << ' ' << above;
    }
  }
}

// Over a whole pixel of the hairline, and the shadow that lies under it.
TEST(CardPainter, hairlineOutsideIsOnePointWide) {
  for (const auto& [appearance, line, shadow] :
       {std::tuple(Appearance::light, 0.20, 0.11), std::tuple(Appearance::dark, 0.42, 0.27)}) {
    QImage image = clear(170);
    paintShadow(image, card, appearance);
    for (const int x : {23, 24 + 270}) {
      EXPECT_NEAR(alphaAt(image, x, 60), 1.0 - (1.0 - line) * (1.0 - shadow), 0.02);
    }
    for (const int x : {22, 24 + 271}) EXPECT_LT(alphaAt(image, x, 60), shadow);
  }
}

TEST(CardPainter, hairlineInsideFadesDownTheCard) {
  struct Line {
    Appearance appearance;
    double top, middle, bottom;
  };
  for (const auto& line :
       {Line{Appearance::light, 0.95, 0.625, 0.30}, Line{Appearance::dark, 0.16, 0.105, 0.05}}) {
    QImage image = clear(360);
    {
      QPainter painter(&image);
      CardPainter().paintInnerHairline(painter, {24.0, 16.0, 270.0, 304.0}, line.appearance, 1.0);
    }
    EXPECT_NEAR(alphaAt(image, 150, 16), line.top, 0.006);
    EXPECT_NEAR(alphaAt(image, 24, 16 + 152), line.middle, 0.006);
    EXPECT_NEAR(alphaAt(image, 24 + 269, 16 + 152), line.middle, 0.006);
    EXPECT_NEAR(alphaAt(image, 150, 16 + 303), line.bottom, 0.006);
    EXPECT_EQ(alphaAt(image, 23, 16 + 152), 0.0);
    EXPECT_EQ(alphaAt(image, 25, 16 + 152), 0.0);
    EXPECT_EQ(alphaAt(image, 150, 17), 0.0);
    EXPECT_EQ(image.pixelColor(150, 16).red(), 255);
  }
}

TEST(CardPainter, hairlineInsideFollowsTheRoundCorner) {
  QImage image = clear(360);
  {
    QPainter painter(&image);
    CardPainter().paintInnerHairline(painter, {24.0, 16.0, 270.0, 304.0}, Appearance::light, 1.0);
  }
  // On the diagonal the middle of a line of radius 17.5 lies 5.63 from either side of the card.
  EXPECT_GT(alphaAt(image, 24 + 5, 16 + 5), 0.4);
  EXPECT_EQ(alphaAt(image, 24 + 3, 16 + 3), 0.0);
  EXPECT_EQ(alphaAt(image, 24 + 8, 16 + 8), 0.0);
}

TEST(CardPainter, stripIsACapsule) {
  EXPECT_EQ(CardPainter::radiusOf({0.0, 0.0, 270.0, 24.0}), 12.0);
  EXPECT_EQ(CardPainter::radiusOf({0.0, 0.0, 270.0, 36.0}), 18.0);
  EXPECT_EQ(CardPainter::radiusOf({0.0, 0.0, 270.0, 304.0}), 18.0);
}

}  // namespace
}  // namespace vorli::ui
