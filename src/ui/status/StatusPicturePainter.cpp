#include "ui/status/StatusPicturePainter.h"

#include "ui/kit/QtColour.h"

#include <QPainter>
#include <QPen>
#include <QRectF>
#include <algorithm>
#include <cmath>

namespace vorli::ui {
namespace {

double roundedTo(double value, double steps) {
  return std::round(value * steps) / steps;
}

Colour rounded(const Colour& colour) {
  constexpr double steps = 255.0;
  return {roundedTo(colour.red, steps), roundedTo(colour.green, steps), roundedTo(colour.blue, steps),
          roundedTo(colour.alpha, steps)};
}

}  // namespace

ports::StatusPicture rounded(const ports::StatusPicture& picture) {
  constexpr double steps = 256.0;
  ports::StatusPicture result = picture;
  for (auto& stroke : result.strokes) {
    for (double* length : {&stroke.fromX, &stroke.fromY, &stroke.toX, &stroke.toY, &stroke.width}) {
      *length = roundedTo(*length, steps);
    }
    stroke.colour = rounded(stroke.colour);
  }
  return result;
}

void paintStatusPicture(QPainter& painter, const QRectF& area, const ports::StatusPicture& picture) {
  const double side = std::min(area.width(), area.height());
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(area.center() - QPointF(side, side) / 2.0);
  painter.scale(side / picture.sidePoints, side / picture.sidePoints);
  for (const auto& stroke : picture.strokes) {
    painter.setPen(QPen(qtColour(stroke.colour), stroke.width, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(stroke.fromX, stroke.fromY), QPointF(stroke.toX, stroke.toY));
  }
  painter.restore();
}

QImage statusPictureImage(const ports::StatusPicture& picture, int sidePixels) {
  QImage image(sidePixels, sidePixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  paintStatusPicture(painter, image.rect(), picture);
  return image;
}

}  // namespace vorli::ui
