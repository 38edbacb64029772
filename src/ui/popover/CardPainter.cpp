#include "ui/popover/CardPainter.h"

#include "ui/kit/QtColour.h"
#include "ui/popover/CardShadowPainter.h"
#include "ui/popover/PopoverLayout.h"

#include <QLinearGradient>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace vorli::ui {
namespace {

// The shadow is cut into three slices. `endPart` is the height of the card in the upper and in the lower one,
// `middlePart` the height that is drawn of the middle one and repeated. At pixel ratios in steps of 1/4 both
// are whole pixels, and the middle one holds whole patterns of the dither.
constexpr double endPart = 48.0, middlePart = 32.0;

void paintOuterHairline(QPainter& painter, const QRectF& card, Appearance appearance) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(qtColour(PopoverPalette::of(appearance).outerHairline));
  const double radius = CardPainter::radiusOf(card) + 1.0;
  painter.drawRoundedRect(card.adjusted(-1.0, -1.0, 1.0, 1.0), radius, radius);
}

constexpr QMargins around{static_cast<int>(CardPainter::sideReach), static_cast<int>(CardPainter::topReach),
                          static_cast<int>(CardPainter::sideReach),
                          static_cast<int>(CardPainter::bottomReach)};

// Draws everything around a card of this size: its shadow, and the dark hairline over it.
QImage frameOf(const QSizeF& card, Appearance appearance, double pixelRatio) {
  const QRectF place({CardPainter::sideReach, CardPainter::topReach}, card);
  QImage frame =
      cardShadow(card, CardPainter::radiusOf(place), around, PopoverPalette::of(appearance), pixelRatio);
  QPainter painter(&frame);
  painter.scale(pixelRatio, pixelRatio);
  painter.setRenderHint(QPainter::Antialiasing);
  paintOuterHairline(painter, place, appearance);
  return frame;
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

QRectF scaled(const QRectF& rect, double factor) {
  return {rect.topLeft() * factor, rect.size() * factor};
}

// Pixels that the rounded corners of a card at the origin affect. If the height is odd, the upper corners
// include the middle row.
std::array<QRect, 4> cornersOf(const QSizeF& card, double pixelRatio) {
  const QSize size = (card * pixelRatio).toSize();
  const int side = static_cast<int>(std::ceil(CardPainter::radiusOf({{0.0, 0.0}, card}) * pixelRatio));
  const int above = std::min(side, (size.height() + 1) / 2), below = std::min(side, size.height() / 2);
  const int right = size.width() - side, bottom = size.height() - below;
  return {QRect(0, 0, side, above), QRect(right, 0, side, above), QRect(0, bottom, side, below),
          QRect(right, bottom, side, below)};
}

QImage rounded(const QImage& content, const QRect& corner, const QImage& mask) {
  QImage result(mask.size(), QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < mask.height(); ++y) {
    const auto* from = reinterpret_cast<const QRgb*>(content.constScanLine(corner.y() + y)) + corner.x();
    const auto* covered = reinterpret_cast<const QRgb*>(mask.constScanLine(y));
    auto* to = reinterpret_cast<QRgb*>(result.scanLine(y));
    for (int x = 0; x < mask.width(); ++x) {
      const QRgb pixel = (from[x] & 0xFFFFFFU) | static_cast<QRgb>(qAlpha(covered[x])) << 24;
      to[x] = qPremultiply(pixel);
    }
  }
  return result;
}

}  // namespace

double CardPainter::radiusOf(const QRectF& card) {
  return std::min(PopoverMetrics::cornerRadius, card.height() / 2.0);
}

std::array<QRectF, 8> CardPainter::openParts(const QRectF& card, double pixelRatio) {
  const QRectF all = card.adjusted(-sideReach, -topReach, sideReach, bottomReach);
  const auto corners = cornersOf(card.size(), pixelRatio);
  const auto corner = [&](std::size_t i) {
    return scaled(corners[i], 1.0 / pixelRatio).translated(card.topLeft());
  };
  return {QRectF(all.left(), all.top(), all.width(), topReach),
          QRectF(all.left(), card.bottom(), all.width(), bottomReach),
          QRectF(all.left(), card.top(), sideReach, card.height()),
          QRectF(card.right(), card.top(), sideReach, card.height()),
          corner(0),
          corner(1),
          corner(2),
          corner(3)};
}

void CardPainter::paintGround(QPainter& painter, const QRectF& area, Appearance appearance) {
  const auto& palette = PopoverPalette::of(appearance);
  const Colour& line = palette.outerHairline;
  painter.fillRect(area, qtColour(blend(palette.paperBottom, line.withAlpha(1.0), line.alpha)));
}

bool CardPainter::isShadowKept(const QRectF& card) {
  return card.height() >= 2.0 * endPart;
}

void CardPainter::paintShadow(QPainter& painter, const QRectF& card, const QRectF& part,
                              Appearance appearance, double pixelRatio) {
  if (!isShadowKept(card)) return paintLowShadow(painter, card, part, appearance, pixelRatio);
  const QSizeF sliced(card.width(), 2.0 * endPart + middlePart);
  if (!slices_.shows(sliced, appearance, pixelRatio)) drawSlices(sliced, appearance, pixelRatio);
  const QPointF corner = card.topLeft() - QPointF(sideReach, topReach);
  const double width = card.width() + 2.0 * sideReach;
  const double upper = topReach + endPart, lower = endPart + bottomReach;
  const auto copy = [&](const QRectF& slice, double fromY) {
    const QRectF shown = slice & part;
    if (shown.isEmpty()) return;
    const QPointF from(shown.left() - corner.x(), fromY + shown.top() - slice.top());
    painter.drawImage(shown, slices_.image, scaled({from, shown.size()}, pixelRatio));
  };
  copy({corner.x(), corner.y(), width, upper}, 0.0);
  copy({corner.x(), card.bottom() - endPart, width, lower}, upper + middlePart);
  const double end = card.bottom() - endPart;
  for (double y = card.top() + endPart; y < end; y += middlePart) {
    copy({corner.x(), y, width, std::min(middlePart, end - y)}, upper);
  }
}

// Keeps the lowest card's, because every opening begins with it.
void CardPainter::paintLowShadow(QPainter& painter, const QRectF& card, const QRectF& part,
                                 Appearance appearance, double pixelRatio) {
  const QRectF all = card.adjusted(-sideReach, -topReach, sideReach, bottomReach);
  const QRectF shown = all & part;
  const auto draw = [&](const QImage& frame) {
    painter.drawImage(shown, frame, scaled(shown.translated(-all.topLeft()), pixelRatio));
  };
  if (lowest_.shows(card.size(), appearance, pixelRatio)) return draw(lowest_.image);
  Kept drawn{frameOf(card.size(), appearance, pixelRatio), card.size(), appearance, pixelRatio};
  draw(drawn.image);
  const bool isOfOtherKind = lowest_.appearance != appearance || lowest_.pixelRatio != pixelRatio;
  if (isOfOtherKind || card.height() < lowest_.card.height()) lowest_ = std::move(drawn);
}

void CardPainter::drawSlices(const QSizeF& card, Appearance appearance, double pixelRatio) {
  slices_ = {frameOf(card, appearance, pixelRatio), card, appearance, pixelRatio};
}

void CardPainter::paintContent(QPainter& painter, const QRectF& card, const QRectF& dirty,
                               const QImage& content, double pixelRatio) {
  if (masks_.card != card.size() || masks_.pixelRatio != pixelRatio) drawMasks(card.size(), pixelRatio);
  const QRectF drawn = (dirty & card).translated(-card.topLeft());
  const auto corners = cornersOf(card.size(), pixelRatio);
  const QRectF upper = scaled(corners[0], 1.0 / pixelRatio), lower = scaled(corners[3], 1.0 / pixelRatio);
  const auto copy = [&](const QRectF& part) {
    const QRectF shown = part & drawn;
    if (shown.isEmpty()) return;
    painter.drawImage(shown.translated(card.topLeft()), content, scaled(shown, pixelRatio));
  };
  copy({upper.right(), 0.0, lower.left() - upper.right(), upper.bottom()});
  copy({0.0, upper.bottom(), card.width(), lower.top() - upper.bottom()});
  copy({upper.right(), lower.top(), lower.left() - upper.right(), lower.height()});
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const QRectF place = scaled(corners[i], 1.0 / pixelRatio);
    if (!place.intersects(drawn)) continue;
    painter.drawImage(place.translated(card.topLeft()), rounded(content, corners[i], masks_.images[i]),
                      QRectF({0.0, 0.0}, QSizeF(corners[i].size())));
  }
}

void CardPainter::drawMasks(const QSizeF& card, double pixelRatio) {
  masks_.card = card;
  masks_.pixelRatio = pixelRatio;
  const auto corners = cornersOf(card, pixelRatio);
  const double radius = radiusOf({{0.0, 0.0}, card});
  for (std::size_t i = 0; i < corners.size(); ++i) {
    QImage& mask = masks_.images[i];
    mask = clearImage(corners[i].size(), 1.0);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-corners[i].topLeft());
    painter.scale(pixelRatio, pixelRatio);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF({0.0, 0.0}, card), radius, radius);
  }
}

void CardPainter::paintInnerHairline(QPainter& painter, const QRectF& card, Appearance appearance,
                                     double pixelRatio) {
  if (!edge_.shows(card.size(), appearance, pixelRatio)) drawEdge(card.size(), appearance, pixelRatio);
  // Draws only where the line is: a blit of the whole card would cost as much as its light.
  constexpr double line = 2.0;
  const double corner = PopoverMetrics::cornerRadius, width = card.width(), height = card.height();
  const double end = std::min(corner, height / 2.0), between = height - 2.0 * end;
  const auto part = [&](double x, double y, double partWidth, double partHeight) {
    const QRectF to(x, y, partWidth, partHeight);
    if (!to.isEmpty()) painter.drawImage(to.translated(card.topLeft()), edge_.image, scaled(to, pixelRatio));
  };
  for (const double y : {0.0, height - end}) {
    part(0.0, y, corner, end);
    part(width - corner, y, corner, end);
  }
  for (const double y : {0.0, height - line}) part(corner, y, width - 2.0 * corner, line);
  for (const double x : {0.0, width - line}) part(x, end, line, between);
}

void CardPainter::drawEdge(const QSizeF& card, Appearance appearance, double pixelRatio) {
  edge_ = {clearImage(card, pixelRatio), card, appearance, pixelRatio};
  QPainter painter(&edge_.image);
  painter.scale(pixelRatio, pixelRatio);
  painter.setRenderHint(QPainter::Antialiasing);
  paintBrightLine(painter, {{0.0, 0.0}, card}, appearance);
}

void CardPainter::forget() {
  *this = {};
}

}  // namespace vorli::ui
