#pragma once

#include "ui/popover/PopoverPalette.h"
#include "ui/popover/PopoverPicture.h"

#include <QImage>
#include <optional>

class QPainter;

namespace vorli::ui {

/// Draws the ring with its glass, arc, word or dots on a clear ground, and keeps the picture until another
/// one is asked for.
class RingPainter {
 public:
  /// Half the side of the picture, in points: the grown ring with its overshoot.
  static constexpr double reach = 64.0;

  /// The ring's centre is the picture's. The reference holds until the next call.
  const QImage& draw(const RingPicture& ring, Appearance appearance, double pixelRatio);
  void forget();

 private:
  QImage image_;
  std::optional<RingPicture> drawn_;
  Appearance appearance_ = Appearance::light;
};

}  // namespace vorli::ui
