#pragma once

#include "ui/popover/PixelWords.h"
#include "ui/popover/PopoverPalette.h"
#include "ui/popover/RadialProfile.h"

#include <QImage>
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <cstdint>
#include <span>
#include <vector>

namespace vorli::ui {

/// Where the paper of the card and a round light lie in an image of device pixels.
struct LitPaperPlace {
  double pixelRatio = 1.0;
  double paperTop = 0.0;  // device pixels, as the centre
  QPoint centre;          // of the light: where four pixels meet
};

/// A sample of light along the radius, ready to be laid over a pixel: its own colour, then how much of the
/// ground shines through, four times.
using LaidLight = Words;

/// Paints the card's paper with a round light on it. Both are summed up with fractions and dithered once, so
/// that neither shows bands. How far each pixel lies from the centre is kept from picture to picture.
class LitPaper {
 public:
  /// Fills the pixels of `area`; `light` by samples along the radius.
  void paint(QImage& image, const QRect& area, const LitPaperPlace& place, const PopoverPalette& palette,
             std::span<const Premultiplied> light, int samplesPerPoint);

 private:
  void measure(const QRect& area, QPoint centre, float samplesPerPixel);
  void lay(std::span<const Premultiplied> light);

  // Of a quarter of the plane, in samples: the light is round.
  std::vector<std::uint16_t> distances_;
  int columns_ = 0, rows_ = 0;
  float samplesPerPixel_ = 0.0F;
  std::vector<LaidLight> table_;
};

/// Lays a small round light over opaque pixels; `samples` to a device pixel along the radius.
void paintRoundLight(QImage& image, const QRect& clip, QPointF centre, std::span<const Premultiplied> light,
                     int samplesPerPixel);

}  // namespace vorli::ui
