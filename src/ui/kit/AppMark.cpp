#include "ui/kit/AppMark.h"

#include "base/Colour.h"
#include "ui/kit/QtColour.h"
#include "ui/kit/SoftShadow.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QTransform>
#include <cmath>
#include <numbers>

namespace vorli::ui {
namespace {

// All lengths are on a grid of 64 by 64.
constexpr double markGrid = 64.0;
constexpr double markCentre = markGrid / 2.0;
constexpr double squareHalfWidth = 30.5;
constexpr double squareExponent = 5.0;
constexpr double markLineWidth = 0.75;
constexpr double dialRadius = 22.5;
constexpr double tickWidth = 4.2;
constexpr double starRadius = 7.2;
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
    outline << QPointF(markCentre + squareHalfWidth * flattened(std::cos(angle)),
                       markCentre + squareHalfWidth * flattened(std::sin(angle)));
  }
  QPainterPath path;
  path.addPolygon(outline);
  path.closeSubpath();
  return path;
}

constexpr MarkDial markDial{dialRadius, 0.60, 0.94, tickWidth};

}  // namespace

MarkTicks litTicks(const WindowPalette& palette) {
  const auto components = [](const QColor& colour) {
    return Colour{colour.redF(), colour.greenF(), colour.blueF(), 1.0};
  };
  MarkTicks ticks;
  const double steps = static_cast<double>(ticks.size()) - 1.0;
  for (std::size_t i = 0; i < ticks.size(); ++i) {
    ticks.at(i).colour = qtColour(blend(components(palette.mark.firstTick), components(palette.mark.lastTick),
                                        static_cast<double>(i) / steps));
  }
  return ticks;
}

void paintMarkDial(QPainter& painter, const QPointF& centre, const MarkDial& dial, const MarkTicks& ticks) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(centre);
  const double opacity = painter.opacity();
  for (const auto& tick : ticks) {
    painter.setOpacity(opacity * tick.opacity);
    painter.setPen(QPen(tick.colour, dial.tickWidth * tick.widthShare, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(0.0, -dial.radius * dial.from), QPointF(0.0, -dial.radius * dial.to));
    painter.rotate(360.0 / static_cast<double>(ticks.size()));
  }
  painter.restore();
}

QPainterPath markStar(const QPointF& centre, double radius) {
  constexpr double waist = 0.17 * std::numbers::sqrt2;
  const auto at = [&centre](double eighths, double distance) {
    const double angle = (eighths / 8.0 - 0.25) * 2.0 * std::numbers::pi;
    return centre + QPointF(distance * std::cos(angle), distance * std::sin(angle));
  };
  QPainterPath path(at(0.0, radius));
  for (int point = 0; point < 4; ++point)
    path.quadTo(at(2.0 * point + 1.0, radius * waist), at(2.0 * point + 2.0, radius));
  return path;
}

QImage appMarkImage(int sidePixels, int marginPixels, const WindowPalette& palette) {
  return appMarkImage(sidePixels, marginPixels, palette, litTicks(palette), palette.gleam);
}

QImage appMarkImage(int sidePixels, int marginPixels, const WindowPalette& palette, const MarkTicks& ticks,
                    const QColor& starColour) {
  const QPainterPath square = superellipse();
  const QSize size(sidePixels + 2 * marginPixels, sidePixels + 2 * marginPixels);
  const QTransform toPixels = QTransform::fromTranslate(marginPixels, marginPixels)
                                  .scale(sidePixels / markGrid, sidePixels / markGrid);
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.drawImage(
      0, 0, softShadow(square.translated(0.0, shadowOffset), shadowDeviation, shadowColour, size, toPixels));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setTransform(toPixels);
  painter.fillPath(square, palette.mark.ground.over(square.boundingRect()));
  painter.strokePath(square, QPen(palette.mark.line, markLineWidth));
  paintMarkDial(painter, {markCentre, markCentre}, markDial, ticks);
  painter.fillPath(markStar({markCentre, markCentre}, starRadius), starColour);
  return image;
}

}  // namespace vorli::ui
