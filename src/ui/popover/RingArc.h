#pragma once

#include "base/Colour.h"

#include <QImage>
#include <cstdint>
#include <vector>

namespace vorli::ui {

/// The band of the ring: its track and, over it, an arc with round ends that runs clockwise from twelve
/// o'clock. The arc fades from `head` at its end to `tail` at its beginning. The seam between the two lies in
/// the middle of the empty part, so that it never shows in a round end.
struct RingArc {
  double radius = 52.0;  // radius of the middle of the band, in device pixels
  double width = 6.0;
  double progress = 0.0;
  Colour track, head, tail;

  /// No arc is shown below this progress.
  static constexpr double leastProgress = 0.004;
};

/// Paints ring bands. Coverage and angle are computed for each pixel, which is smoother than a conic gradient
/// of few stops, and cached while the band has the same size.
class RingBand {
 public:
  /// Paints the band around the middle of a premultiplied image, which must be clear there.
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
