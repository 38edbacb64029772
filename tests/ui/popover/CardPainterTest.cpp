#include "tests/ui/popover/AlphaAt.h"
#include "ui/popover/CardPainter.h"

#include <QPainter>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <tuple>

namespace vorli::ui {
namespace {

constexpr double shadowTolerance = 0.002;

QImage clear(int height) {
  QImage image(318, height, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  return image;
}

void paintShadow(QImage& image, const QRectF& card, Appearance appearance) {
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  CardPainter().paintShadow(painter, card, QRectF(image.rect()), appearance, 1.0);
}

// Too low to be assembled from slices.
constexpr QRectF card{24.0, 16.0, 270.0, 95.0};

// Mean of eight pixels along the edge, over which the dither evens out.
double alphaDown(const QImage& image, int x, int y) {
  double sum = 0.0;
  for (int i = 0; i < 8; ++i) sum += alphaAt(image, x, y + i);
  return sum / 8.0;
}
double alphaAlong(const QImage& image, int x, int y) {
  double sum = 0.0;
  for (int i = 0; i < 8; ++i) sum += alphaAt(image, x + i, y);
  return sum / 8.0;
}

struct Expected {
  Appearance appearance;
  // Opacity in the middle of the pixel that far outside of the card: A1 P(-2 d1 / 4) over A2 P(-2 d2 / 22),
  // where P is the normal distribution and d1, d2 are the distances from the two shadows.
  double left1, left5, left10, left18, below3, below20, above4;
};

class CardShadowTest : public testing::TestWithParam<Expected> {};
INSTANTIATE_TEST_SUITE_P(appearances, CardShadowTest,
                         testing::Values(Expected{Appearance::light, 0.09673, 0.05245, 0.02888, 0.00787,
                                                  0.14274, 0.02888, 0.01593},
                                         Expected{Appearance::dark, 0.24985, 0.12959, 0.07136, 0.01945,
                                                  0.35720, 0.07136, 0.03936}));

TEST_P(CardShadowTest, fallsOffAsABellCurve) {
  const auto& expected = GetParam();
  QImage image = clear(170);
  paintShadow(image, card, expected.appearance);
  constexpr int middleX = 24 + 135, middleY = 16 + 47, bottom = 16 + 95;
  EXPECT_NEAR(alphaDown(image, 24 - 2, middleY), expected.left1, shadowTolerance);
  EXPECT_NEAR(alphaDown(image, 24 - 6, middleY), expected.left5, shadowTolerance);
  EXPECT_NEAR(alphaDown(image, 24 - 11, middleY), expected.left10, shadowTolerance);
  EXPECT_NEAR(alphaDown(image, 24 - 19, middleY), expected.left18, shadowTolerance);
  EXPECT_NEAR(alphaDown(image, 24 + 270 + 5, middleY), expected.left5, shadowTolerance);
  EXPECT_NEAR(alphaAlong(image, middleX, bottom + 3), expected.below3, shadowTolerance);
  EXPECT_NEAR(alphaAlong(image, middleX, bottom + 20), expected.below20, shadowTolerance);
  EXPECT_NEAR(alphaAlong(image, middleX, 16 - 5), expected.above4, shadowTolerance);
}

// A terrace is a run of points with one opacity, and then a step. Beside the card every point is fainter than
// the one before it, until the shadow is too faint for that.
TEST_P(CardShadowTest, hasNoTerraces) {
  QImage image = clear(170);
  paintShadow(image, card, GetParam().appearance);
  double before = 1.0;
  for (int outside = 1; outside <= 16; ++outside) {
    const double alpha = alphaDown(image, 24 - 1 - outside, 16 + 47);
    EXPECT_LT(alpha, before) << outside;
    if (outside > 1) {
      EXPECT_LT(before - alpha, GetParam().left1 / 4.0) << outside;
    }
    before = alpha;
  }
}

TEST_P(CardShadowTest, isClearAtTheEdgesOfItsImage) {
  QImage image = clear(16 + 95 + 34);
  paintShadow(image, card, GetParam().appearance);
  for (int x = 0; x < image.width(); ++x) {
    EXPECT_EQ(alphaAt(image, x, 0), 0.0);
    EXPECT_EQ(alphaAt(image, x, image.height() - 1), 0.0);
  }
  for (int y = 0; y < image.height(); ++y) EXPECT_EQ(alphaAt(image, 0, y), 0.0);
}

TEST(CardPainter, shadowIsBrownOnPaperAndBlackOnCharcoal) {
  QImage light = clear(170), dark = clear(170);
  paintShadow(light, card, Appearance::light);
  paintShadow(dark, card, Appearance::dark);
  // Each component's share of the opacity, in eight pixels over which the dither evens out.
  const auto shares = [](const QImage& image) {
    std::array<double, 4> sums{};
    const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(16 + 95 + 5)) + 24 + 135;
    for (int x = 0; x < 8; ++x) {
      for (std::size_t i = 0; i < 4; ++i) sums[i] += static_cast<double>(row[x] >> (24 - 8 * i) & 0xFFU);
    }
    return std::array{sums[1] / sums[0], sums[2] / sums[0], sums[3] / sums[0]};
  };
  EXPECT_NEAR(shares(light)[0], 0.22, 0.01);
  EXPECT_NEAR(shares(light)[1], 0.17, 0.01);
  EXPECT_NEAR(shares(light)[2], 0.11, 0.01);
  EXPECT_EQ(shares(dark), (std::array{0.0, 0.0, 0.0}));
}

TEST(CardPainter, tallCardIsAssembledFromTheSameShadow) {
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

// Covers scales at which a point is not a whole number of pixels. A low card is drawn in one piece.
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

// Averages over a whole pixel of the hairline, and the shadow below it.
TEST(CardPainter, hairlineOutsideIsOnePointWide) {
  for (const auto& [appearance, line, shadow] :
       {std::tuple(Appearance::light, 0.20, 0.119), std::tuple(Appearance::dark, 0.42, 0.311)}) {
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
  // On the diagonal, the middle of a line of radius 17.5 is 5.63 away from either side of the card.
  EXPECT_GT(alphaAt(image, 24 + 5, 16 + 5), 0.4);
  EXPECT_EQ(alphaAt(image, 24 + 3, 16 + 3), 0.0);
  EXPECT_EQ(alphaAt(image, 24 + 8, 16 + 8), 0.0);
}

TEST(CardPainter, aStripHasFullyRoundEnds) {
  EXPECT_EQ(CardPainter::radiusOf({0.0, 0.0, 270.0, 24.0}), 12.0);
  EXPECT_EQ(CardPainter::radiusOf({0.0, 0.0, 270.0, 36.0}), 18.0);
  EXPECT_EQ(CardPainter::radiusOf({0.0, 0.0, 270.0, 304.0}), 18.0);
}

}  // namespace
}  // namespace vorli::ui
