#include "ui/kit/Plates.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

const QColor lip(255, 255, 255, 230);

QImage emptyPicture() {
  QImage picture(120, 90, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::black);
  return picture;
}

// A plate with nothing but its lip.
QImage lipOf(const QRectF& shape, double radius) {
  QImage picture = emptyPicture();
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  paintPlate(painter, shape, radius, Qt::NoBrush, Qt::transparent, lip);
  return picture;
}

QImage computedLip(const QRectF& shape, double radius) {
  QPainterPath plate, lowered;
  plate.addRoundedRect(shape, radius, radius);
  lowered.addRoundedRect(shape.translated(0.0, 1.5), radius, radius);
  QImage picture = emptyPicture();
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(plate.subtracted(lowered), lip);
  return picture;
}

TEST(Plates, theLipIsThePlateWithoutALoweredCopyOfIt) {
  const QRectF shape(0.0, 0.0, 80.0, 40.0);
  EXPECT_NE(lipOf(shape, 12.0), emptyPicture());
  EXPECT_EQ(lipOf(shape, 12.0), computedLip(shape, 12.0));
}

TEST(Plates, aLipThatWasPaintedBeforeIsTheSameInAnotherPlace) {
  const QSizeF size(60.0, 30.0);
  const QImage first = lipOf({QPointF(0.0, 0.0), size}, 10.0);
  const QImage second = lipOf({QPointF(25.0, 40.0), size}, 10.0);
  EXPECT_EQ(second.copy(25, 40, 60, 30), first.copy(0, 0, 60, 30));
}

TEST(Plates, platesThatDifferInSizeOrRadiusHaveTheirOwnLips) {
  const QRectF shape(0.0, 0.0, 70.0, 36.0), wider(0.0, 0.0, 71.0, 36.0), higher(0.0, 0.0, 70.0, 37.0);
  lipOf(shape, 9.0);
  EXPECT_EQ(lipOf(shape, 14.0), computedLip(shape, 14.0));
  EXPECT_EQ(lipOf(wider, 9.0), computedLip(wider, 9.0));
  EXPECT_EQ(lipOf(higher, 9.0), computedLip(higher, 9.0));
}

TEST(Plates, aLipIsTheSameAfterManyOthersWerePainted) {
  const QRectF shape(0.0, 0.0, 50.0, 20.0);
  const QImage before = lipOf(shape, 6.0);
  for (int width = 20; width < 110; ++width) lipOf({0.0, 0.0, static_cast<double>(width), 25.0}, 6.0);
  EXPECT_EQ(lipOf(shape, 6.0), before);
}

}  // namespace
}  // namespace vorli::ui
