#include "ui/popover/PopoverPainter.h"

#include "ui/popover/PopoverLayout.h"
#include "ui/popover/SparkPainter.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace vorli::ui {
namespace {

double onPixel(double value, double pixelRatio) {
  return std::round(value * pixelRatio) / pixelRatio;
}

// All pixels that the rectangle touches.
QRect pixelsOf(const QRectF& points, double pixelRatio) {
  return QRectF(points.topLeft() * pixelRatio, points.size() * pixelRatio).toAlignedRect();
}

// Adds every font of the popover to the picture.
PopoverPicture withEveryFont(PopoverPicture picture) {
  const auto letters = QStringLiteral("Abcdefghijklmnopqrstuvwxyz. Abcdefghijklmnopqrstuvwxyz.");
  using enum CulpritPiece::Kind;
  picture.cardTop = 0.0;
  picture.cardHeight = PopoverMetrics::tallest;
  picture.contentOpacity = picture.ring.labelOpacity = 1.0;
  auto& words = picture.words;
  words.sentence = {letters};
  words.culprits = CulpritPicture{.pieces = {{name, letters}, {text, letters}}, .names = {{}}};
  words.quit = QuitPicture{.name = letters, .cancel = {}, .quit = {}};
  words.banner = BannerPicture{QStringLiteral("0123456789% LIGHTER")};
  words.link = LinkPicture{};
  return picture;
}

}  // namespace

QRectF PopoverPainter::cardOf(const QPointF& origin, const PopoverPicture& picture, double pixelRatio) {
  const auto onPixels = [&](double x, double y) {
    return QPointF(onPixel(origin.x() + x, pixelRatio), onPixel(origin.y() + y, pixelRatio));
  };
  return {onPixels(0.0, picture.cardTop),
          onPixels(PopoverMetrics::width, picture.cardTop + picture.cardHeight)};
}

QRectF PopoverPainter::haloOf(const PopoverPicture& picture) {
  constexpr double reach = 100.0;  // 96, enlarged by the breath
  const QRectF halo(PopoverMetrics::centreX - reach, picture.ringCentreY - reach, 2.0 * reach, 2.0 * reach);
  return halo & QRectF(0.0, picture.cardTop, PopoverMetrics::width, picture.cardHeight);
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

// Paints only what the card does not cover.
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

// `content` is the position of the content's origin in the composed image, in points.
void PopoverPainter::compose(const PopoverPicture& picture, const QPointF& content, const QRect& area,
                             double pixelRatio) {
  constexpr double overshoot = 8.0;  // of the unfurl
  const QSize size =
      (QSizeF(PopoverMetrics::width, PopoverMetrics::tallest + overshoot) * pixelRatio).toSize();
  if (composed_.size() != size) composed_ = QImage(size, QImage::Format_RGB32);

  const auto& palette = PopoverPalette::of(picture.appearance);
  // Aligned to whole pixels, like the picture of the ring.
  const QPoint centre(qRound(PopoverMetrics::centreX * pixelRatio),
                      qRound((content.y() + picture.ringCentreY) * pixelRatio));
  paper_.paint(composed_, area, {pixelRatio, content.y() * pixelRatio, centre},
               {palette.paperTop, palette.paperBottom, PopoverMetrics::tallest}, light_.sample(picture),
               RingLight::samplesPerPoint);
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

void PopoverPainter::prepare(const PopoverPicture& resting, double pixelRatio) {
  QImage image((QSizeF(PopoverMetrics::width, PopoverMetrics::tallest) * pixelRatio).toSize(),
               QImage::Format_ARGB32_Premultiplied);
  for (const bool labelReady : {false, true}) {
    PopoverPicture picture = withEveryFont(resting);
    picture.ring.labelReady = labelReady;
    QPainter painter(&image);
    painter.scale(pixelRatio, pixelRatio);
    paint(painter, {}, picture, Frame::shadow,
          QRectF(0.0, 0.0, PopoverMetrics::width, PopoverMetrics::tallest), pixelRatio);
  }
  forget();
}

void PopoverPainter::forget() {
  paper_ = {};
  ring_.forget();
  words_.forget();
  card_.forget();
  composed_ = {};
}

}  // namespace vorli::ui
