#pragma once

#include "base/Colour.h"

#include <QImage>
#include <cstdint>
#include <vector>

namespace vorli::ui {

/// The band of the ring: its track, and the arc over it from twelve o'clock clockwise, with round ends. The
/// arc pales from `head` at its end towards `tail` at its beginning; the seam between the two lies in the
/// middle of what is left empty, so that it never shows in a round end.
struct RingArc {
  double radius = 52.0;  // device pixels, of the middle of the band
  double width = 6.0;
  double progress = 0.0;
  Colour track, head, tail;

  /// Below it no arc is shown.
  static constexpr double leastProgress = 0.004;
};

/// Paints ring bands. Coverage and angle of each pixel are computed, which is smoother than a conic gradient
/// of few stops, and kept for as long as the band has the same size.
class RingBand {
 public:
  /// Round the middle of a premultiplied image that is clear there.
  void paint(QImage& image, const RingArc& arc);
  void forget() { *this = {}; }

 private:
  struct Place {
    std::uint16_t x, y;
    std::uint16_t turn;     // clockwise from the top, in 65,536ths
    std::uint8_t coverage;  // of 255
  };
  void measure(const QSize& size, const RingArc& arc);

  std::vector<Place> places_;
  QSize size_;
  double radius_ = 0.0, width_ = 0.0;
};

}  // namespace vorli::ui
