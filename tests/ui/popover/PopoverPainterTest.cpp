#include "ambient/RingGradient.h"
#include "tests/fakes/ManualScheduler.h"
#include "ui/popover/ChangedPart.h"
#include "ui/popover/PopoverLayout.h"
#include "ui/popover/PopoverPainter.h"

#include <QPainter>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace vorli::ui {
namespace {

constexpr QPointF origin{24.0, 16.0};
constexpr QSize windowSize{318, 360};

PopoverPicture critical(double haloBreath = 0.5) {
  PopoverPicture picture;
  picture.haloBreath = haloBreath;
  picture.ring.progress = 0.91;
  picture.ring.canPolish = true;
  picture.ring.lens = 1.0;
  picture.ring.stateColour = ringGradientColour(0.91);
  fakes::ManualScheduler clock;
  picture.aurora = AuroraField(clock).picture(clock.now(), picture.ring.stateColour, 0.0);
  picture.words.sentence.text = QStringLiteral("Your Mac is full. Time to polish it.");
  return picture;
}

QImage window(double pixelRatio) {
  QImage image(windowSize * pixelRatio, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  return image;
}

void paint(QImage& image, PopoverPainter& popover, const PopoverPicture& picture, const QRectF& dirty,
           double pixelRatio) {
  QPainter painter(&image);
  painter.scale(pixelRatio, pixelRatio);
  popover.paint(painter, origin, picture, PopoverPainter::Frame::shadow, dirty, pixelRatio);
}

QImage paintedPopover(const PopoverPicture& picture, double pixelRatio) {
  PopoverPainter popover;
  QImage image = window(pixelRatio);
  paint(image, popover, picture, QRectF({0.0, 0.0}, QSizeF(windowSize)), pixelRatio);
  return image;
}

class PopoverPainterAt : public testing::TestWithParam<double> {};
INSTANTIATE_TEST_SUITE_P(pixelRatios, PopoverPainterAt, testing::Values(1.0, 1.25, 1.5, 1.75, 2.0));

TEST_P(PopoverPainterAt, repaintingTheHaloAloneGivesTheWholePicture) {
  const double pixelRatio = GetParam();
  PopoverPainter popover;
  QImage image = window(pixelRatio);
  paint(image, popover, critical(0.2), QRectF({0.0, 0.0}, QSizeF(windowSize)), pixelRatio);
  paint(image, popover, critical(0.9), PopoverPainter::haloOf(critical(0.9)).translated(origin), pixelRatio);
  EXPECT_EQ(image, paintedPopover(critical(0.9), pixelRatio));
  EXPECT_NE(image, paintedPopover(critical(0.2), pixelRatio));
}

// Pictures that follow critical(), named by their difference from it.
std::vector<PopoverPicture> successors() {
  std::vector<PopoverPicture> pictures(9, critical());
  pictures[1].haloBreath = 0.9;
  pictures[2].ring.progress = 0.4;
  pictures[3].ring.button.hover = 1.0;
  pictures[4].ring.scale = 1.08;
  pictures[5].words.gear.hover = 1.0;
  pictures[6].words.sentence.text = QStringLiteral("Your Mac feels great.");
  pictures[7].aurora.bloom.opacity = 1.0;
  pictures[7].aurora.bloom.scale = 1.0;
  pictures[8].cardHeight = 304.0;
  return pictures;
}

TEST_P(PopoverPainterAt, repaintingTheChangedPartGivesTheWholePicture) {
  const double pixelRatio = GetParam();
  const QRectF all({0.0, 0.0}, QSizeF(windowSize));
  for (const auto& next : successors()) {
    PopoverPainter popover;
    QImage image = window(pixelRatio);
    paint(image, popover, critical(), all, pixelRatio);
    const auto changed = changedPart(critical(), next);
    const QRectF dirty = changed ? changed->translated(origin) : all;
    {
      // Clears the picture like a window before it is repainted.
      QPainter painter(&image);
      painter.scale(pixelRatio, pixelRatio);
      painter.setCompositionMode(QPainter::CompositionMode_Clear);
      painter.fillRect(dirty.toAlignedRect(), Qt::transparent);
    }
    if (!dirty.isEmpty()) paint(image, popover, next, dirty.toAlignedRect(), pixelRatio);
    EXPECT_EQ(image, paintedPopover(next, pixelRatio)) << dirty.width() << " x " << dirty.height();
  }
}

TEST_P(PopoverPainterAt, cardBeginsAndEndsOnADevicePixel) {
  const double pixelRatio = GetParam();
  const auto isWhole = [pixelRatio](double place) {
    return std::abs(place * pixelRatio - std::round(place * pixelRatio)) < 1e-9;
  };
  // The card below an upper panel, and above a lower one.
  for (const QPointF& from : {origin, QPointF(24.0, 22.0)}) {
    const QRectF card = PopoverPainter::cardOf(from, critical(), pixelRatio);
    EXPECT_TRUE(isWhole(card.left()) && isWhole(card.right())) << card.left() << ' ' << card.right();
    EXPECT_TRUE(isWhole(card.top()) && isWhole(card.bottom())) << card.top() << ' ' << card.bottom();
    EXPECT_NEAR(card.width(), 270.0, 0.5 / pixelRatio);
  }
}

// Straight side and round corner are painted apart.
TEST_P(PopoverPainterAt, sideOfTheCardIsAsOpaqueAsItsCorner) {
  const double pixelRatio = GetParam();
  const QImage image = paintedPopover(critical(), pixelRatio);
  const auto pixel = [pixelRatio](double place) { return static_cast<int>(std::lround(place * pixelRatio)); };
  const int last = pixel(24.0 + 270.0) - 1;
  for (const double y : {17.4, 120.0, 222.6}) {
    EXPECT_GE(image.pixelColor(last, static_cast<int>((16.0 + y) * pixelRatio)).alpha(), 240) << y;
    EXPECT_LT(image.pixelColor(last + 1, static_cast<int>((16.0 + y) * pixelRatio)).alpha(), 255) << y;
  }
}

// Without the sentence and the arc, the picture is its own mirror image except for the dither.
TEST_P(PopoverPainterAt, ringAndItsLightHaveOneCentre) {
  const double pixelRatio = GetParam();
  auto picture = critical();
  picture.ring.progress = 0.0;
  picture.ring.labelOpacity = 0.0;
  picture.words.sentence.text.clear();
  const QImage image = paintedPopover(picture, pixelRatio);
  const int centre = static_cast<int>(std::lround(24.0 * pixelRatio) + std::lround(135.0 * pixelRatio));
  const int y = static_cast<int>(std::lround((16.0 + 96.0) * pixelRatio));
  for (int x = 0; x < static_cast<int>(90.0 * pixelRatio); ++x) {
    EXPECT_NEAR(image.pixelColor(centre + x, y).green(), image.pixelColor(centre - 1 - x, y).green(), 2) << x;
  }
}

TEST(ChangedPart, isEmptyForEqualPicturesAndTheHaloForABreath) {
  EXPECT_TRUE(changedPart(critical(), critical())->isEmpty());
  EXPECT_EQ(changedPart(critical(0.2), critical(0.9)), PopoverPainter::haloOf(critical()));
}

TEST_P(PopoverPainterAt, keptPicturesAreThoseOfANewPainter) {
  const double pixelRatio = GetParam();
  PopoverPainter popover;
  QImage first = window(pixelRatio), second = window(pixelRatio);
  const QRectF all({0.0, 0.0}, QSizeF(windowSize));
  auto changed = critical();
  changed.ring.progress = 0.4;
  changed.cardHeight = 304.0;
  changed.words.sentence.text = QStringLiteral("Your Mac feels great.");
  paint(first, popover, critical(), all, pixelRatio);
  paint(second, popover, changed, all, pixelRatio);
  EXPECT_EQ(second, paintedPopover(changed, pixelRatio));
}

TEST(PopoverPainter, cornersOfTheCardAreClearButForTheShadow) {
  const QImage image = paintedPopover(critical(), 1.0);
  EXPECT_LT(image.pixelColor(24, 16).alpha(), 80);
  EXPECT_EQ(image.pixelColor(24 + 18, 16 + 18).alpha(), 255);
  EXPECT_EQ(image.pixelColor(24 + 135, 16 + 239).alpha(), 255);
  EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
}

TEST(PopoverPainter, shadowEndsInsideTheWindow) {
  const QImage image = paintedPopover(critical(), 1.0);
  for (int y = 0; y < image.height(); ++y) EXPECT_LE(image.pixelColor(0, y).alpha(), 1) << y;
}

TEST(PopoverPainter, foldedContentLeavesPaperAndAurora) {
  auto folded = critical();
  folded.contentOpacity = 0.0;
  const QImage image = paintedPopover(folded, 1.0);
  EXPECT_EQ(image.pixelColor(24 + 248, 16 + 22), paintedPopover(folded, 1.0).pixelColor(24 + 248, 16 + 22));
  auto other = folded;
  other.words.sentence.text = QStringLiteral("Your Mac feels great.");
  other.ring.progress = 0.1;
  EXPECT_EQ(paintedPopover(other, 1.0), image);
}

TEST(PopoverPainter, paperFadesFromTheUpperToTheLowerColourOverTheTallestCard) {
  auto bare = critical();
  bare.cardHeight = PopoverMetrics::tallest;
  bare.contentOpacity = bare.aurora.warmCloud.opacity = 0.0;
  const QImage image = paintedPopover(bare, 1.0);
  const auto meanRed = [&image](int top) {
    double sum = 0.0;
    for (int y = top; y < top + 8; ++y) {
      for (int x = 60; x < 68; ++x) sum += qRed(image.pixel(24 + x, 16 + y));
    }
    return sum / 64.0;
  };
  EXPECT_NEAR(meanRed(8), 255.0 * (0.992 - (0.992 - 0.969) * 12.0 / 304.0), 0.15);
  EXPECT_NEAR(meanRed(288), 255.0 * (0.992 - (0.992 - 0.969) * 292.0 / 304.0), 0.15);
}

TEST(PopoverPainter, cardThatGrowsFromBelowKeepsItsContentInPlace) {
  auto strip = critical();
  strip.cardTop = 120.0;
  strip.cardHeight = 120.0;
  const QImage image = paintedPopover(strip, 1.0), whole = paintedPopover(critical(), 1.0);
  EXPECT_EQ(image.pixelColor(24 + 135, 16 + 80).alpha(), 0);
  EXPECT_EQ(image.pixelColor(24 + 135, 16 + 191), whole.pixelColor(24 + 135, 16 + 191));
}

TEST(PopoverPainter, rotationOfTheAuroraChangesNoPixel) {
  auto turned = critical();
  turned.aurora.warmCloud.rotationDegrees = 77.0;
  turned.aurora.bloom.rotationDegrees = -77.0;
  EXPECT_EQ(paintedPopover(turned, 1.0), paintedPopover(critical(), 1.0));
}

TEST(PopoverPainter, pointerOnAReadyRingRaisesItsGlassAndOnACalmOneDoesNot) {
  auto hovered = critical();
  hovered.ring.button.hover = 1.0;
  EXPECT_NE(paintedPopover(hovered, 1.0), paintedPopover(critical(), 1.0));
  auto calm = critical();
  calm.ring.canPolish = false;
  auto calmHovered = calm;
  calmHovered.ring.button.hover = 1.0;
  EXPECT_EQ(paintedPopover(calmHovered, 1.0), paintedPopover(calm, 1.0));
}

}  // namespace
}  // namespace vorli::ui
