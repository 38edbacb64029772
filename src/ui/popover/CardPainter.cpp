#include "ui/popover/CardPainter.h"

#include "ui/QtColour.h"
#include "ui/popover/PopoverLayout.h"

#include <QLinearGradient>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace vorli::ui {
namespace {

using Metrics = PopoverMetrics;

// Of a card that is cut in three: this much of it belongs to the upper and to the lower part.
constexpr double endPart = 48.0;

double normalDistribution(double x) {
  return 0.5 * (1.0 + std::erf(x / std::numbers::sqrt2));
}

// Rounded rectangles on each other, from wide and faint to narrow, whose opacities add up to the bell curve's
// edge.
void paintSoftShadow(QPainter& painter, const QRectF& card, const CardShadow& shadow, const Colour& colour) {
  constexpr double rounding = 0.35;
  const double radius = CardPainter::radiusOf(card);
  const int count = std::max(6, static_cast<int>(std::lround(shadow.reach)));
  double reached = 0.0;
  for (int i = 0; i < count; ++i) {
    const double grown = shadow.reach - 2.0 * shadow.reach * (i + 0.5) / count;
    const double target = shadow.opacity * normalDistribution(-grown / (shadow.reach / 2.0));
    const double opacity = (target - reached) / (1.0 - reached);
    reached = target;
    const QRectF shape = card.adjusted(-grown, shadow.fall - grown, grown, shadow.fall + grown);
    if (opacity <= 0.0 || shape.height() <= 2.0) continue;
    const double corner = std::clamp(radius + grown + rounding * shadow.reach, 1.0, shape.height() / 2.0);
    painter.setBrush(qtColour(colour.withAlpha(opacity)));
    painter.drawRoundedRect(shape, corner, corner);
  }
}

void paintOuterHairline(QPainter& painter, const QRectF& card, Appearance appearance) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(qtColour(PopoverPalette::of(appearance).outerHairline));
  const double radius = CardPainter::radiusOf(card) + 1.0;
  painter.drawRoundedRect(card.adjusted(-1.0, -1.0, 1.0, 1.0), radius, radius);
}

void paintFrame(QPainter& painter, const QRectF& card, Appearance appearance) {
  const auto& palette = PopoverPalette::of(appearance);
  painter.setPen(Qt::NoPen);
  for (const auto& shadow : palette.shadows) paintSoftShadow(painter, card, shadow, palette.shadow);
  paintOuterHairline(painter, card, appearance);
}

void paintBrightLine(QPainter& painter, const QRectF& card, Appearance appearance) {
  const auto& palette = PopoverPalette::of(appearance);
  QLinearGradient gradient(card.topLeft(), card.bottomLeft());
  gradient.setColorAt(0.0, qtColour(palette.innerHairlineTop));
  gradient.setColorAt(1.0, qtColour(palette.innerHairlineBottom));
  const double radius = CardPainter::radiusOf(card) - 0.5;
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(gradient, 1.0));
  painter.drawRoundedRect(card.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

QImage clearImage(const QSizeF& points, double pixelRatio) {
  QImage image((points * pixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  return image;
}

}  // namespace

double CardPainter::radiusOf(const QRectF& card) {
  return std::min(Metrics::cornerRadius, card.height() / 2.0);
}

void CardPainter::paintGround(QPainter& painter, const QRectF& area, Appearance appearance) {
  const auto& palette = PopoverPalette::of(appearance);
  const Colour& line = palette.outerHairline;
  painter.fillRect(area, qtColour(blend(palette.paperBottom, line.withAlpha(1.0), line.alpha)));
}

void CardPainter::paintShadow(QPainter& painter, const QRectF& card, Appearance appearance,
                              double pixelRatio) {
  if (card.height() < 2.0 * endPart) return paintFrame(painter, card, appearance);
  if (slices_.image.isNull() || slices_.appearance != appearance || slices_.pixelRatio != pixelRatio) {
    drawSlices(appearance, pixelRatio);
  }
  const double width = Metrics::width + 2.0 * sideReach;
  const double topHeight = topReach + endPart, bottomHeight = endPart + bottomReach;
  const double left = card.left() - sideReach, top = card.top() - topReach;
  const auto source = [pixelRatio](double x, double y, double w, double h) {
    return QRectF(x * pixelRatio, y * pixelRatio, w * pixelRatio, h * pixelRatio);
  };
  painter.drawImage(QRectF(left, top, width, topHeight), slices_.image, source(0.0, 0.0, width, topHeight));
  painter.drawImage(QRectF(left, card.bottom() - endPart, width, bottomHeight), slices_.image,
                    source(0.0, topHeight + 1.0, width, bottomHeight));
  const double between = card.height() - 2.0 * endPart;
  for (const double x : {0.0, width - sideReach - 1.0}) {
    painter.drawImage(QRectF(left + x, card.top() + endPart, sideReach + 1.0, between), slices_.image,
                      source(x, topHeight, sideReach + 1.0, 1.0));
  }
}

void CardPainter::drawSlices(Appearance appearance, double pixelRatio) {
  const double height = 2.0 * endPart + 1.0;
  slices_ = {clearImage({Metrics::width + 2.0 * sideReach, topReach + height + bottomReach}, pixelRatio),
             appearance,
             pixelRatio,
             {}};
  QPainter painter(&slices_.image);
  painter.scale(pixelRatio, pixelRatio);
  painter.setRenderHint(QPainter::Antialiasing);
  paintFrame(painter, {sideReach, topReach, Metrics::width, height}, appearance);
}

void CardPainter::paintInnerHairline(QPainter& painter, const QRectF& card, Appearance appearance,
                                     double pixelRatio) {
  if (edge_.image.isNull() || edge_.appearance != appearance || edge_.pixelRatio != pixelRatio ||
      edge_.size != card.size()) {
    drawEdge(card.size(), appearance, pixelRatio);
  }
  // Only where the line runs: a blit of the whole card would cost as much as its light.
  const double corner = radiusOf(card), between = card.height() - 2.0 * corner;
  const auto part = [&](double x, double y, double width, double height) {
    painter.drawImage(QRectF(card.left() + x, card.top() + y, width, height), edge_.image,
                      QRectF(x * pixelRatio, y * pixelRatio, width * pixelRatio, height * pixelRatio));
  };
  part(0.0, 0.0, card.width(), corner);
  part(0.0, card.height() - corner, card.width(), corner);
  if (between <= 0.0) return;
  part(0.0, corner, 2.0, between);
  part(card.width() - 2.0, corner, 2.0, between);
}

void CardPainter::drawEdge(const QSizeF& size, Appearance appearance, double pixelRatio) {
  edge_ = {clearImage(size, pixelRatio), appearance, pixelRatio, size};
  QPainter painter(&edge_.image);
  painter.scale(pixelRatio, pixelRatio);
  painter.setRenderHint(QPainter::Antialiasing);
  paintBrightLine(painter, {{0.0, 0.0}, size}, appearance);
}

void CardPainter::forget() {
  slices_ = {};
  edge_ = {};
}

}  // namespace vorli::ui
