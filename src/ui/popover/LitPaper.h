#pragma once

#include "ui/popover/BlurredProfile.h"
#include "ui/popover/PopoverPalette.h"

#include <QImage>
#include <QPointF>
#include <QRect>
#include <span>

namespace vorli::ui {

/// Where the paper of the card and a round light lie in an image of device pixels.
struct LitPaperPlace {
  double pixelRatio = 1.0;
  double paperTop = 0.0;  // device pixels, as the centre
  QPointF centre;
};

/// Fills the pixels of `area` with the card's paper and `light`, given by samples along the radius. Both are
/// summed up with fractions and dithered once, so that neither shows bands. One pass, no cache.
void paintLitPaper(QImage& image, const QRect& area, const LitPaperPlace& place,
                   const PopoverPalette& palette, std::span<const Premultiplied> light, int samplesPerPoint);

/// Lays a small round light over opaque pixels; `samples` to a device pixel along the radius.
void paintRoundLight(QImage& image, const QRect& clip, QPointF centre, std::span<const Premultiplied> light,
                     int samplesPerPixel);

}  // namespace vorli::ui
