#include "ambient/WhiteSparkShower.h"

#include <algorithm>
#include <cmath>

namespace vorli {
namespace {

double opacityAt(double f) {
  constexpr double lit = 0.1;
  constexpr double fading = 0.7;
  if (f < lit) return f / lit;
  if (f < fading) return 1.0;
  return std::max(0.0, 1.0 - (f - fading) / (1.0 - fading));
}

}  // namespace

std::optional<WhiteSparkShower::Sparks> WhiteSparkShower::sparks(double time) const {
  if (!startDate) return std::nullopt;
  const double elapsed = time - *startDate;
  Sparks sparks;
  for (std::size_t i = 0; i < sparkCount; ++i) {
    const double local = elapsed - staggerDelay * static_cast<double>(i);
    const double f = std::clamp(local / sparkDuration, 0.0, 1.0);
    const double travel = 1.0 - std::pow(1.0 - f, 2.5);
    sparks[i] = {.x = destinations[i].x * travel,
                 .y = destinations[i].y * travel,
                 .scale = travel * 0.65 + 0.35,
                 .opacity = opacityAt(f)};
  }
  return sparks;
}

}  // namespace vorli
