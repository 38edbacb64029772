#pragma once

#include <span>

namespace vorli::ui {

/// How strong a round light is at a share of its radius.
struct OpacityStop {
  double position, opacity;
};

/// In a straight line from stop to stop, which stand in order and begin at 0; nothing from the last one on.
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
