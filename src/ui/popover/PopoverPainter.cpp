#include "ui/popover/PopoverPainter.h"

#include "ui/popover/PopoverLayout.h"
#include "ui/popover/SparkPainter.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace vorli::ui {
namespace {

using Metrics = PopoverMetrics;

double onPixel(double value, double pixelRatio) {
  return std::round(value * pixelRatio) / pixelRatio;
}

// All that the points touch.
QRect pixelsOf(const QRectF& points, double pixelRatio) {
  return QRectF(points.topLeft() * pixelRatio, points.size() * pixelRatio).toAlignedRect();
}

}  // namespace

QRectF PopoverPainter::cardOf(const QPointF& origin, const PopoverPicture& picture, double pixelRatio) {
  const auto onPixels = [&](double x, double y) {
    return QPointF(onPixel(origin.x() + x, pixelRatio), onPixel(origin.y() + y, pixelRatio));
  };
  return {onPixels(0.0, picture.cardTop), onPixels(Metrics::width, picture.cardTop + picture.cardHeight)};
}

QRectF PopoverPainter::haloOf(const PopoverPicture& picture) {
  constexpr double reach = 100.0;  // 96 grown by the breath
  const QRectF halo(Metrics::centreX - reach, picture.ringCentreY - reach, 2.0 * reach, 2.0 * reach);
  return halo & QRectF(0.0, picture.cardTop, Metrics::width, picture.cardHeight);
}

void PopoverPainter::paint(QPainter& painter, const QPointF& origin, const PopoverPicture& picture,
                           Frame frame, const QRectF& dirty, double pixelRatio) {
  const QRectF card = cardOf(origin, picture, pixelRatio);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setClipRect(dirty, Qt::IntersectClip);
  paintAround(painter, card, picture.appearance, frame, dirty, pixelRatio);
  const QRectF drawn = (dirty & card).translated(-card.topLeft());
  const QRect area = pixelsOf(drawn, pixelRatio);
  compose(picture, origin - card.topLeft(), area, pixelRatio);
  card_.paintContent(painter, card, dirty, composed_, pixelRatio);
  if (!card.adjusted(2.0, 2.0, -2.0, -2.0).contains(dirty)) {
    card_.paintInnerHairline(painter, card, picture.appearance, pixelRatio);
  }
  painter.restore();
}

// Only what the card does not hide.
void PopoverPainter::paintAround(QPainter& painter, const QRectF& card, Appearance appearance, Frame frame,
                                 const QRectF& dirty, double pixelRatio) {
  if (frame == Frame::hairline && !card.contains(dirty)) {
    return CardPainter::paintGround(painter, dirty, appearance);
  }
  if (frame == Frame::shadow && !CardPainter::isShadowKept(card)) {
    return card_.paintShadow(painter, card, dirty, appearance, pixelRatio);
  }
  for (const QRectF& open : CardPainter::openParts(card, pixelRatio)) {
    const QRectF part = open & dirty;
    if (part.isEmpty()) continue;
    if (frame == Frame::shadow) card_.paintShadow(painter, card, part, appearance, pixelRatio);
    if (frame == Frame::hairline) CardPainter::paintGround(painter, part, appearance);
  }
}

// `content` is where the content's origin lies in the composed image, in points.
void PopoverPainter::compose(const PopoverPicture& picture, const QPointF& content, const QRect& area,
                             double pixelRatio) {
  constexpr double overshoot = 8.0;  // of the unfurl
  const QSize size = (QSizeF(Metrics::width, Metrics::tallest + overshoot) * pixelRatio).toSize();
  if (composed_.size() != size) composed_ = QImage(size, QImage::Format_RGB32);

  const auto& palette = PopoverPalette::of(picture.appearance);
  // On whole pixels, where the picture of the ring lies as well.
  const QPoint centre(qRound(Metrics::centreX * pixelRatio),
                      qRound((content.y() + picture.ringCentreY) * pixelRatio));
  paper_.paint(composed_, area, {pixelRatio, content.y() * pixelRatio, centre}, palette,
               light_.sample(picture), RingLight::samplesPerPoint);
  if (picture.contentOpacity <= 0.0) return;
  {
    QPainter painter(&composed_);
    painter.setClipRect(area);
    painter.setOpacity(picture.contentOpacity);
    const QImage& ring = ring_.draw(picture.ring, picture.appearance, pixelRatio);
    painter.drawImage(centre - QPoint(ring.width() / 2, ring.height() / 2), ring);
  }
  if (const auto& sparks = picture.aurora.sparks) {
    paintSparks(composed_, area, centre, pixelRatio, *sparks, picture.contentOpacity, picture.appearance);
  }
  QPainter painter(&composed_);
  painter.setClipRect(area);
  painter.setOpacity(picture.contentOpacity);
  const auto words = words_.draw(picture.words, picture.appearance, pixelRatio);
  for (const QRectF& part : words.parts) {
    const QRect source = pixelsOf(part, pixelRatio);
    const QPoint target =
        source.topLeft() + QPoint(0, static_cast<int>(std::lround(content.y() * pixelRatio)));
    painter.drawImage(target, words.image, source);
  }
}

void PopoverPainter::forget() {
  light_ = {};
  paper_ = {};
  ring_.forget();
  words_.forget();
  card_.forget();
  composed_ = {};
}

}  // namespace vorli::ui
