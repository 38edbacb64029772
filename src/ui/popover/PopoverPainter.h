#pragma once

#include "ui/popover/CardPainter.h"
#include "ui/popover/LitPaper.h"
#include "ui/popover/PopoverPicture.h"
#include "ui/popover/RingLight.h"
#include "ui/popover/RingPainter.h"
#include "ui/popover/WordsPainter.h"

#include <QImage>
#include <QPointF>
#include <QRectF>

class QPainter;

namespace vorli::ui {

/// Paints the popover at one moment: paper and light in one pass over the card's pixels, then ring, sparks
/// and words from the pictures that are kept of them. Main thread.
class PopoverPainter {
 public:
  enum class Frame { shadow, hairline };  // hairline: nothing shines through around the card

  /// `origin` is where the content's upper left corner lies, on a device pixel. Only `dirty` is painted,
  /// whose pixels must be clear where the card does not cover them.
  void paint(QPainter& painter, const QPointF& origin, const PopoverPicture& picture, Frame frame,
             const QRectF& dirty, double pixelRatio);

  /// The card's rectangle, on device pixels.
  static QRectF cardOf(const QPointF& origin, const PopoverPicture& picture, double pixelRatio);

  /// All that the ring and its halo reach, relative to the content's origin.
  static QRectF haloOf(const PopoverPicture& picture);

  /// Drops what is kept; the next picture costs as much as the first.
  void forget();

 private:
  void paintAround(QPainter& painter, const QRectF& card, Appearance appearance, Frame frame,
                   const QRectF& dirty, double pixelRatio);
  void compose(const PopoverPicture& picture, const QPointF& card, const QRect& area, double pixelRatio);

  RingLight light_;
  LitPaper paper_;
  RingPainter ring_;
  WordsPainter words_;
  CardPainter card_;
  QImage composed_;  // the card without its frame, from its upper left corner
};

}  // namespace vorli::ui
