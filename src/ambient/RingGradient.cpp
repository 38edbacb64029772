#include "ambient/RingGradient.h"

#include "ambient/Palette.h"

#include <array>

namespace vorli {

namespace {

struct Stop {
  double progress;
  Colour colour;
};

constexpr std::array stops{
    Stop{0.0, palette::teal},    Stop{0.22, palette::calm},   Stop{0.4, palette::green},
    Stop{0.56, palette::yellow}, Stop{0.74, palette::orange}, Stop{0.9, palette::red},
    Stop{1.0, palette::deepRed},
};

Colour tintedByHour(const Colour& colour, int hour) {
  if (hour >= 6 && hour <= 9) return blend(colour, palette::teal, 0.06);
  if (hour >= 10 && hour <= 15) return colour;
  if (hour >= 16 && hour <= 20) return blend(colour, palette::orange, 0.06);
  return blend(colour, palette::calmForLight, 0.05);
}

}  // namespace

Colour ringGradientColour(double progress) {
  const Stop* from = &stops.front();
  for (const Stop& to : stops) {
    if (progress < to.progress) {
      if (&to == from) break;
      return blend(from->colour, to.colour, (progress - from->progress) / (to.progress - from->progress));
    }
    from = &to;
  }
  return from->colour;
}

Colour ringDisplayColour(double progress, int localHour, double calmIntensity) {
  constexpr double leastVisibleCalm = 0.001;
  const Colour tinted = tintedByHour(ringGradientColour(progress), localHour);
  return calmIntensity < leastVisibleCalm ? tinted : blend(tinted, palette::calm, calmIntensity);
}

}  // namespace vorli
