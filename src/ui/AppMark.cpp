#include "ui/AppMark.h"

#include "ambient/MenuBarTickDial.h"
#include "base/Colour.h"
#include "ui/QtColour.h"
#include "ui/SoftShadow.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QTransform>
#include <cmath>
#include <numbers>

namespace vorli::ui {
namespace {

// All lengths are on a grid of 64 by 64.
constexpr double grid = 64.0;
constexpr double centre = grid / 2.0;
constexpr double squareHalfWidth = 30.5;
constexpr double squareExponent = 5.0;
constexpr double lineWidth = 0.75;
constexpr double dialRadius = 22.5;
constexpr double tickWidth = 4.2;
constexpr double starRadius = 7.2;
constexpr double starWaist = 0.17;
constexpr double shadowOffset = 1.2;
constexpr double shadowDeviation = 1.8;
const QColor shadowColour(40, 28, 8, 46);

QPainterPath superellipse() {
  constexpr int corners = 192;
  const auto flattened = [](double value) {
    return std::copysign(std::pow(std::abs(value), 2.0 / squareExponent), value);
  };
  QPolygonF outline;
  for (int i = 0; i < corners; ++i) {
    const double angle = 2.0 * std::numbers::pi * i / corners;
    outline << QPointF(centre + squareHalfWidth * flattened(std::cos(angle)),
                       centre + squareHalfWidth * flattened(std::sin(angle)));
  }
  QPainterPath path;
  path.addPolygon(outline);
  path.closeSubpath();
  return path;
}

QPainterPath star() {
  const auto at = [](double eighths, double radius) {
    const double angle = (eighths / 8.0 - 0.25) * 2.0 * std::numbers::pi;
    return QPointF(centre + radius * std::cos(angle), centre + radius * std::sin(angle));
  };
  QPainterPath path(at(0.0, starRadius));
  for (int point = 0; point < 4; ++point) {
    path.quadTo(at(2.0 * point + 1.0, starRadius * starWaist * std::numbers::sqrt2),
                at(2.0 * point + 2.0, starRadius));
  }
  return path;
}

void paintDial(QPainter& painter, const WindowPalette& palette) {
  MenuBarTickDial dial;
  dial.progress = 1.0;
  const auto picture = dial.picture(2.0 * dialRadius, 0.0);
  const Colour first{palette.markFirstTick.redF(), palette.markFirstTick.greenF(),
                     palette.markFirstTick.blueF(), 1.0};
  const Colour last{palette.markLastTick.redF(), palette.markLastTick.greenF(), palette.markLastTick.blueF(),
                    1.0};
  const double steps = static_cast<double>(picture.strokes.size()) - 1.0;
  constexpr double corner = centre - dialRadius;
  for (std::size_t tick = 0; tick < picture.strokes.size(); ++tick) {
    const auto& stroke = picture.strokes[tick];
    const QColor colour = qtColour(blend(first, last, static_cast<double>(tick) / steps));
    painter.setPen(QPen(colour, tickWidth, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(corner + stroke.fromX, corner + stroke.fromY),
                     QPointF(corner + stroke.toX, corner + stroke.toY));
  }
}

}  // namespace

QImage appMarkImage(int sidePixels, int marginPixels, const WindowPalette& palette) {
  const QPainterPath square = superellipse();
  const QSize size(sidePixels + 2 * marginPixels, sidePixels + 2 * marginPixels);
  const QTransform toPixels =
      QTransform::fromTranslate(marginPixels, marginPixels).scale(sidePixels / grid, sidePixels / grid);
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.drawImage(
      0, 0, softShadow(square.translated(0.0, shadowOffset), shadowDeviation, shadowColour, size, toPixels));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setTransform(toPixels);
  painter.fillPath(square, palette.mark.over(square.boundingRect()));
  painter.strokePath(square, QPen(palette.markLine, lineWidth));
  paintDial(painter, palette);
  painter.fillPath(star(), palette.gleam);
  return image;
}

}  // namespace vorli::ui
