#pragma once

#include "base/Colour.h"

#include <QImage>
#include <QPointF>

namespace vorli::ui {

/// The band of the ring: its track, and the arc over it from twelve o'clock clockwise, with round ends. The
/// arc pales from `head` at its end towards `tail` at its beginning; the seam between the two lies in the
/// middle of what is left empty, so that it never shows in a round end.
struct RingArc {
  QPointF centre;        // device pixels, as the two lengths
  double radius = 52.0;  // of the middle of the band
  double width = 6.0;
  double progress = 0.0;
  Colour track, head, tail;

  /// Below it no arc is shown.
  static constexpr double leastProgress = 0.004;

  /// Over the pixels of a premultiplied image. Coverage and angle of each pixel of the band are computed,
  /// which is smoother than a conic gradient of few stops and takes a fifth of its time.
  void paint(QImage& image) const;
};

}  // namespace vorli::ui
