#pragma once

#include <span>

namespace vorli::ui {

/// Opacity of a round light at `position`, a fraction of its radius.
struct OpacityStop {
  double position, opacity;
};

/// Interpolates linearly between the stops, which are sorted by position and begin at 0. The opacity is 0
/// from the last one on.
inline double opacityAt(std::span<const OpacityStop> stops, double position) {
  for (std::size_t i = 1; i < stops.size(); ++i) {
    const auto &from = stops[i - 1], &to = stops[i];
    if (position < to.position) {
      return from.opacity +
             (to.opacity - from.opacity) * (position - from.position) / (to.position - from.position);
    }
  }
  return 0.0;
}

}  // namespace vorli::ui
