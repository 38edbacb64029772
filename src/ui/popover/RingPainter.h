#pragma once

#include "ui/popover/PopoverPalette.h"
#include "ui/popover/PopoverPicture.h"
#include "ui/popover/RingArc.h"

#include <QImage>
#include <optional>

class QPainter;

namespace vorli::ui {

/// Draws the ring with its glass, its arc, and its word or dots on a transparent background. Caches the
/// picture until another one is requested; the parts that the arc does not change are cached separately.
class RingPainter {
 public:
  /// Half the side of the picture, in points. Has room for the grown ring with its overshoot.
  static constexpr double reach = 64.0;

  /// The ring is centred in the picture. The reference is valid until the next call.
  const QImage& draw(const RingPicture& ring, Appearance appearance, double pixelRatio);
  void forget();

 private:
  void drawBase(const RingPicture& ring, double scale);

  QImage image_, base_;  // base: everything but the band and its bead
  std::optional<RingPicture> drawn_, drawnBase_;
  RingBand band_;
  Appearance appearance_ = Appearance::light;
  double pixelRatio_ = 0.0;
};

}  // namespace vorli::ui
