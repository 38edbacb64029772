#include "ui/popover/PopoverPainter.h"

#include "ui/popover/LitPaper.h"
#include "ui/popover/PopoverLayout.h"
#include "ui/popover/SparkPainter.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace vorli::ui {
namespace {

using Metrics = PopoverMetrics;

double onPixel(double value, double pixelRatio) {
  return std::round(value * pixelRatio) / pixelRatio;
}

// Whether the card hides all that lies under it there: its corners do not.
bool covers(const QRectF& card, const QRectF& dirty) {
  const double corner = CardPainter::radiusOf(card);
  return card.adjusted(corner, 0.0, -corner, 0.0).contains(dirty) ||
         card.adjusted(0.0, corner, 0.0, -corner).contains(dirty);
}

}  // namespace

QRectF PopoverPainter::cardOf(const QPointF& origin, const PopoverPicture& picture, double pixelRatio) {
  const double top = onPixel(origin.y() + picture.cardTop, pixelRatio);
  const double bottom = onPixel(origin.y() + picture.cardTop + picture.cardHeight, pixelRatio);
  return {origin.x(), top, Metrics::width, bottom - top};
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
  if (!covers(card, dirty)) {
    if (frame == Frame::shadow) card_.paintShadow(painter, card, picture.appearance, pixelRatio);
    if (frame == Frame::hairline) CardPainter::paintGround(painter, dirty, picture.appearance);
  }
  const QRectF drawn = (dirty & card).translated(-card.topLeft());
  const QRect area = QRectF(drawn.topLeft() * pixelRatio, drawn.size() * pixelRatio).toAlignedRect();
  compose(picture, origin - card.topLeft(), area, pixelRatio);
  paintCard(painter, card, dirty, pixelRatio);
  if (!card.adjusted(2.0, 2.0, -2.0, -2.0).contains(dirty)) {
    card_.paintInnerHairline(painter, card, picture.appearance, pixelRatio);
  }
  painter.restore();
}

// `content` is where the content's origin lies in the composed image, in points.
void PopoverPainter::compose(const PopoverPicture& picture, const QPointF& content, const QRect& area,
                             double pixelRatio) {
  constexpr double overshoot = 8.0;  // of the unfurl
  const QSize size = (QSizeF(Metrics::width, Metrics::tallest + overshoot) * pixelRatio).toSize();
  if (composed_.size() != size) composed_ = QImage(size, QImage::Format_RGB32);

  const auto& palette = PopoverPalette::of(picture.appearance);
  const double centreY = std::round((content.y() + picture.ringCentreY) * pixelRatio);
  const QPointF centre(Metrics::centreX * pixelRatio, centreY);
  paintLitPaper(composed_, area, {pixelRatio, content.y() * pixelRatio, centre}, palette,
                light_.sample(picture), RingLight::samplesPerPoint);
  if (picture.contentOpacity <= 0.0) return;
  {
    QPainter painter(&composed_);
    painter.setClipRect(area);
    painter.setOpacity(picture.contentOpacity);
    const QImage& ring = ring_.draw(picture.ring, picture.appearance, pixelRatio);
    painter.drawImage(QPointF(std::round(centre.x() - ring.width() / 2.0), centreY - ring.height() / 2.0),
                      ring);
  }
  if (const auto& sparks = picture.aurora.sparks) {
    paintSparks(composed_, area, centre, pixelRatio, *sparks, picture.contentOpacity, picture.appearance);
  }
  QPainter painter(&composed_);
  painter.setClipRect(area);
  painter.setOpacity(picture.contentOpacity);
  const auto words = words_.draw(picture.words, picture.appearance, pixelRatio);
  for (const QRectF& part : words.parts) {
    const QRect source = QRectF(part.topLeft() * pixelRatio, part.size() * pixelRatio).toAlignedRect();
    const QPoint target =
        source.topLeft() + QPoint(0, static_cast<int>(std::lround(content.y() * pixelRatio)));
    painter.drawImage(target, words.image, source);
  }
}

// Blits what has no corner, and fills the two ends with their rounded shape.
void PopoverPainter::paintCard(QPainter& painter, const QRectF& card, const QRectF& dirty,
                               double pixelRatio) const {
  const double corner = std::ceil(CardPainter::radiusOf(card));
  const QRectF middle = card.adjusted(0.0, corner, 0.0, -corner);
  const QRectF blit = middle & dirty;
  if (blit.isValid() && !blit.isEmpty()) {
    painter.drawImage(blit, composed_,
                      QRectF((blit.topLeft() - card.topLeft()) * pixelRatio, blit.size() * pixelRatio));
  }
  if (middle.contains(dirty & card)) return;
  QBrush paper(composed_);
  paper.setTransform(QTransform::fromTranslate(card.x(), card.y()).scale(1.0 / pixelRatio, 1.0 / pixelRatio));
  painter.setPen(Qt::NoPen);
  painter.setBrush(paper);
  const double radius = CardPainter::radiusOf(card);
  const double height = std::min(corner, card.height() / 2.0);
  for (const double top : {card.top(), card.bottom() - height}) {
    painter.save();
    painter.setClipRect(QRectF(card.left(), top, card.width(), height), Qt::IntersectClip);
    painter.drawRoundedRect(card, radius, radius);
    painter.restore();
  }
}

void PopoverPainter::forget() {
  light_ = {};
  ring_.forget();
  words_.forget();
  card_.forget();
  composed_ = {};
}

}  // namespace vorli::ui
