#include "ui/light/LitPaper.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace vorli::ui {
namespace {

constexpr int samplesPerPoint = 4;
constexpr Paper darkPaper{{0.161, 0.153, 0.145}, {0.114, 0.110, 0.106}, 304.0};
constexpr Paper lightPaper{{0.992, 0.984, 0.969}, {0.969, 0.953, 0.929}, 304.0};

QImage paper(const QSize& size, std::span<const Premultiplied> light, double pixelRatio = 1.0,
             const Paper& sheet = darkPaper) {
  QImage image(size, QImage::Format_RGB32);
  LitPaper().paint(image, image.rect(), {pixelRatio, 0.0, {size.width() / 2, size.height() / 2}}, sheet,
                   light, samplesPerPoint);
  return image;
}

double meanRed(const QImage& image, const QRect& area) {
  double sum = 0.0;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) sum += qRed(image.pixel(x, y));
  }
  return sum / (area.width() * area.height());
}

TEST(LitPaper, fadesFromTheUpperToTheLowerColourOverItsHeight) {
  const QImage image = paper({8, 304}, {});
  EXPECT_NEAR(meanRed(image, {0, 0, 8, 8}), 255.0 * (0.161 - (0.161 - 0.114) * 4.0 / 304.0), 0.15);
  EXPECT_NEAR(meanRed(image, {0, 296, 8, 8}), 255.0 * (0.114 + (0.161 - 0.114) * 4.0 / 304.0), 0.15);
}

TEST(LitPaper, everyPixelIsOpaque) {
  const QImage image = paper({16, 16}, {});
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 16; ++x) EXPECT_EQ(qAlpha(image.pixel(x, y)), 255);
  }
}

// The dark card's twelve steps over 304 rows would show as bands of 25 rows.
TEST(LitPaper, noRowIsOfOneColourBetweenTwoSteps) {
  const QImage image = paper({64, 304}, {});
  int plain = 0;
  for (int y = 0; y < 304; ++y) {
    bool isPlain = true;
    for (int x = 1; x < 64; ++x) isPlain = isPlain && image.pixel(x, y) == image.pixel(0, y);
    plain += isPlain ? 1 : 0;
  }
  EXPECT_LT(plain, 30);
}

TEST(LitPaper, lightLiesOverThePaperRoundItsCentre) {
  const std::vector<Premultiplied> light(10 * samplesPerPoint, Premultiplied::of({1.0, 1.0, 1.0}, 0.5));
  const QImage image = paper({64, 64}, light);
  const double unlit = meanRed(paper({64, 64}, {}), {28, 28, 8, 8});
  EXPECT_NEAR(meanRed(image, {28, 28, 8, 8}), (255.0 + unlit) / 2.0, 0.3);
  EXPECT_NEAR(meanRed(image, {0, 28, 16, 8}), meanRed(paper({64, 64}, {}), {0, 28, 16, 8}), 1e-9);
}

TEST(LitPaper, whiteLightStaysWhite) {
  const std::vector<Premultiplied> light(40 * samplesPerPoint, Premultiplied::of({1.0, 1.0, 1.0}, 1.0));
  const QImage image = paper({32, 32}, light, 1.0, lightPaper);
  EXPECT_EQ(image.pixel(16, 16), 0xFFFFFFFFU);
  EXPECT_EQ(image.pixel(3, 7), 0xFFFFFFFFU);
}

TEST(LitPaper, lightIsAsWideAtEveryPixelRatio) {
  const std::vector<Premultiplied> light(10 * samplesPerPoint, Premultiplied::of({1.0, 1.0, 1.0}, 1.0));
  const auto litColumns = [&](double pixelRatio) {
    const int side = static_cast<int>(32 * pixelRatio);
    const QImage image = paper({side, side}, light, pixelRatio);
    int count = 0;
    for (int x = 0; x < side; ++x) count += qRed(image.pixel(x, side / 2)) > 200 ? 1 : 0;
    return count / pixelRatio;
  };
  EXPECT_NEAR(litColumns(1.0), 20.0, 1.0);
  EXPECT_NEAR(litColumns(1.5), 20.0, 1.0);
  EXPECT_NEAR(litColumns(2.0), 20.0, 1.0);
}

TEST(LitPaper, onlyTheAskedAreaIsTouched) {
  QImage image(32, 32, QImage::Format_RGB32);
  image.fill(Qt::green);
  LitPaper().paint(image, {8, 8, 8, 8}, {1.0, 0.0, {16, 16}}, darkPaper, {}, samplesPerPoint);
  EXPECT_EQ(image.pixelColor(7, 8), QColor(Qt::green));
  EXPECT_EQ(image.pixelColor(8, 16), QColor(Qt::green));
  EXPECT_NE(image.pixelColor(8, 8), QColor(Qt::green));
}

// The centre may lie beyond any side of the painted area, and tables kept for one area are used for the next.
TEST(LitPaper, everyAreaIsThatOfTheWholePicture) {
  std::vector<Premultiplied> light;
  for (int i = 0; i < 40 * samplesPerPoint; ++i) {
    light.push_back(Premultiplied::of({1.0, 0.5, 0.2}, 1.0 - i / (40.0 * samplesPerPoint)));
  }
  const LitPaperPlace place{1.0, 0.0, {30, 21}};
  QImage whole(64, 48, QImage::Format_RGB32);
  LitPaper().paint(whole, whole.rect(), place, darkPaper, light, samplesPerPoint);
  LitPaper kept;
  for (const QRect& area : {QRect(2, 3, 9, 7), QRect(40, 30, 13, 11), QRect(5, 20, 50, 3),
                            QRect(29, 1, 2, 40), QRect(30, 21, 1, 1), QRect(0, 0, 64, 48)}) {
    QImage image(64, 48, QImage::Format_RGB32);
    image.fill(Qt::green);
    kept.paint(image, area, place, darkPaper, light, samplesPerPoint);
    EXPECT_EQ(image.copy(area), whole.copy(area)) << area.x() << ' ' << area.y();
  }
}

TEST(LitPaper, roundLightIsCutAtTheEdgesOfTheImage) {
  QImage image(16, 16, QImage::Format_RGB32);
  image.fill(Qt::black);
  const std::vector<Premultiplied> light(16, Premultiplied::of({1.0, 1.0, 1.0}, 1.0));
  paintRoundLight(image, image.rect(), {0.0, 0.0}, light, 4);
  EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::white));
  EXPECT_EQ(image.pixelColor(8, 8), QColor(Qt::black));
  paintRoundLight(image, image.rect(), {100.0, 100.0}, light, 4);
  EXPECT_EQ(image.pixelColor(15, 15), QColor(Qt::black));
}

}  // namespace
}  // namespace vorli::ui
