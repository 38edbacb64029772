#include "ambient/RingGradient.h"
#include "tests/fakes/ManualScheduler.h"
#include "ui/popover/ChangedPart.h"
#include "ui/popover/PopoverLayout.h"
#include "ui/popover/PopoverPainter.h"

#include <QPainter>
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

QImage painted(const PopoverPicture& picture, double pixelRatio) {
  PopoverPainter popover;
  QImage image = window(pixelRatio);
  paint(image, popover, picture, QRectF({0.0, 0.0}, QSizeF(windowSize)), pixelRatio);
  return image;
}

class PopoverPainterAt : public testing::TestWithParam<double> {};
INSTANTIATE_TEST_SUITE_P(pixelRatios, PopoverPainterAt, testing::Values(1.0, 1.5, 2.0));

TEST_P(PopoverPainterAt, repaintOfTheHaloAloneGivesTheWholePicture) {
  const double pixelRatio = GetParam();
  PopoverPainter popover;
  QImage image = window(pixelRatio);
  paint(image, popover, critical(0.2), QRectF({0.0, 0.0}, QSizeF(windowSize)), pixelRatio);
  paint(image, popover, critical(0.9), PopoverPainter::haloOf(critical(0.9)).translated(origin), pixelRatio);
  EXPECT_EQ(image, painted(critical(0.9), pixelRatio));
  EXPECT_NE(image, painted(critical(0.2), pixelRatio));
}

// Pictures that follow critical(), by how they differ from it.
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

TEST_P(PopoverPainterAt, repaintOfTheChangedPartGivesTheWholePicture) {
  const double pixelRatio = GetParam();
  const QRectF all({0.0, 0.0}, QSizeF(windowSize));
  for (const auto& next : successors()) {
    PopoverPainter popover;
    QImage image = window(pixelRatio);
    paint(image, popover, critical(), all, pixelRatio);
    const auto changed = changedPart(critical(), next);
    const QRectF dirty = changed ? changed->translated(origin) : all;
    {
      // As a window does before it is painted anew.
      QPainter painter(&image);
      painter.scale(pixelRatio, pixelRatio);
      painter.setCompositionMode(QPainter::CompositionMode_Clear);
      painter.fillRect(dirty.toAlignedRect(), Qt::transparent);
    }
    if (!dirty.isEmpty()) paint(image, popover, next, dirty.toAlignedRect(), pixelRatio);
    EXPECT_EQ(image, painted(next, pixelRatio));
  }
}

TEST(ChangedPart, nothingWhereNothingDiffersAndTheHaloAloneWhereItBreathes) {
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
  EXPECT_EQ(second, painted(changed, pixelRatio));
}

TEST(PopoverPainter, cornersOfTheCardAreClearButForTheShadow) {
  const QImage image = painted(critical(), 1.0);
  EXPECT_LT(image.pixelColor(24, 16).alpha(), 80);
  EXPECT_EQ(image.pixelColor(24 + 18, 16 + 18).alpha(), 255);
  EXPECT_EQ(image.pixelColor(24 + 135, 16 + 239).alpha(), 255);
  EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
}

TEST(PopoverPainter, shadowEndsInsideTheWindow) {
  const QImage image = painted(critical(), 1.0);
  for (int y = 0; y < image.height(); ++y) EXPECT_LE(image.pixelColor(0, y).alpha(), 1) << y;
}

TEST(PopoverPainter, foldedContentLeavesPaperAndAurora) {
  auto folded = critical();
  folded.contentOpacity = 0.0;
  const QImage image = painted(folded, 1.0);
  EXPECT_EQ(image.pixelColor(24 + 248, 16 + 22), painted(folded, 1.0).pixelColor(24 + 248, 16 + 22));
  auto other = folded;
  other.words.sentence.text = QStringLiteral("Your Mac feels great.");
  other.ring.progress = 0.1;
  EXPECT_EQ(painted(other, 1.0), image);
}

TEST(PopoverPainter, cardThatGrowsFromBelowKeepsItsContentInPlace) {
  auto strip = critical();
  strip.cardTop = 120.0;
  strip.cardHeight = 120.0;
  const QImage image = painted(strip, 1.0), whole = painted(critical(), 1.0);
  EXPECT_EQ(image.pixelColor(24 + 135, 16 + 80).alpha(), 0);
  EXPECT_EQ(image.pixelColor(24 + 135, 16 + 191), whole.pixelColor(24 + 135, 16 + 191));
}

TEST(PopoverPainter, rotationOfTheAuroraChangesNoPixel) {
  auto turned = critical();
  turned.aurora.warmCloud.rotationDegrees = 77.0;
  turned.aurora.bloom.rotationDegrees = -77.0;
  EXPECT_EQ(painted(turned, 1.0), painted(critical(), 1.0));
}

TEST(PopoverPainter, pointerOnAReadyRingRaisesItsGlassAndOnACalmOneDoesNot) {
  auto hovered = critical();
  hovered.ring.button.hover = 1.0;
  EXPECT_NE(painted(hovered, 1.0), painted(critical(), 1.0));
  auto calm = critical();
  calm.ring.canPolish = false;
  auto calmHovered = calm;
  calmHovered.ring.button.hover = 1.0;
  EXPECT_EQ(painted(calmHovered, 1.0), painted(calm, 1.0));
}

}  // namespace
}  // namespace vorli::ui
