#pragma once

#include "base/Colour.h"
#include "ui/light/PixelLanes.h"
#include "ui/light/RadialProfile.h"

#include <QImage>
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <cstdint>
#include <span>
#include <vector>

namespace vorli::ui {

/// Paper with a vertical gradient.
struct Paper {
  Colour top, bottom;
  double height = 0.0;  // of the gradient, in points
};

/// Position of the paper and of a round light in an image of device pixels.
struct LitPaperPlace {
  double pixelRatio = 1.0;
  double paperTop = 0.0;  // in device pixels, like the centre
  QPoint centre;          // of the light; a corner shared by four pixels
};

/// A sample of light along the radius, ready to be laid over a pixel: the four components of its colour, then
/// the share of the background that shines through, for each component.
using LaidLight = PixelLanes;

/// Paints paper with a round light on it. Both are added with fractions and dithered once, so that
/// neither shows bands. The distance of each pixel from the centre is cached between pictures.
class LitPaper {
 public:
  /// Fills the pixels of `area`. `light` holds samples along the radius, from the centre outwards.
  void paint(QImage& image, const QRect& area, const LitPaperPlace& place, const Paper& paper,
             std::span<const Premultiplied> light, int samplesPerPoint);

 private:
  void measure(const QRect& area, QPoint centre, float samplesPerPixel);
  void lay(std::span<const Premultiplied> light);

  // Distances for one quadrant, in samples; the light is radially symmetric.
  std::vector<std::uint16_t> distances_;
  int columns_ = 0, rows_ = 0;
  float samplesPerPixel_ = 0.0F;
  std::vector<LaidLight> table_;
};

/// Lays a small round light over opaque pixels. `light` holds `samplesPerPixel` samples per device pixel of
/// the radius.
void paintRoundLight(QImage& image, const QRect& clip, QPointF centre, std::span<const Premultiplied> light,
                     int samplesPerPixel);

}  // namespace vorli::ui
