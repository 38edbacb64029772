#pragma once

#include "ui/light/LitPaper.h"
#include "ui/popover/CardPainter.h"
#include "ui/popover/PopoverPicture.h"
#include "ui/popover/RingLight.h"
#include "ui/popover/RingPainter.h"
#include "ui/popover/WordsPainter.h"

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <cstddef>

class QPainter;

namespace vorli::ui {

/// Paints the popover at one moment: paper and light in one pass over the card's pixels, then the ring,
/// sparks and words; ring and words come from cached pictures. Main thread.
class PopoverPainter {
 public:
  enum class Frame { shadow, hairline };  // hairline: without a compositor

  /// `origin` is the upper left corner of the content, on a device pixel. Only `dirty` is painted; its pixels
  /// must be clear where the card does not cover them.
  void paint(QPainter& painter, const QPointF& origin, const PopoverPicture& picture, Frame frame,
             const QRectF& dirty, double pixelRatio);

  /// The card's rectangle, on device pixels.
  static QRectF cardOf(const QPointF& origin, const PopoverPicture& picture, double pixelRatio);

  /// Area that the ring and its halo can reach, relative to the content's origin.
  static QRectF haloOf(const PopoverPicture& picture);

  /// Loads every font and computes the light of `resting`, and leaves no picture behind.
  void prepare(const PopoverPicture& resting, double pixelRatio);

  /// Drops the cached pictures. Keeps the profiles of the light, which are small and take long to compute.
  void forget();
  /// Number of profiles of the light computed so far.
  std::size_t lightProfiles() const { return light_.profileCount(); }

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
