#include "ambient/MenuBarTickDial.h"

#include "ambient/Palette.h"
#include "base/Assert.h"
#include "sampling/RingState.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vorli {
namespace {

struct ByAppearance {
  Colour light;
  Colour dark;

  constexpr const Colour& pick(bool isDark) const { return isDark ? dark : light; }
};

constexpr ByAppearance healthyColour{{0.18, 0.478, 0.302}, palette::green};
constexpr ByAppearance warmingColour{{0.824, 0.502, 0.145}, palette::orange};
constexpr ByAppearance criticalColour{{0.784, 0.22, 0.157}, palette::red};
constexpr ByAppearance calmColour{palette::calmForLight, palette::calm};

constexpr ByAppearance emptyColour{palette::black.withAlpha(0.22), palette::white.withAlpha(0.85)};
constexpr ByAppearance dimmedColour{palette::black.withAlpha(0.16), palette::white.withAlpha(0.32)};

constexpr double leastVisibleCalm = 0.001;

const ByAppearance& colourOf(RingState state) {
  switch (state) {
    case RingState::healthy:
      return healthyColour;
    case RingState::warming:
      return warmingColour;
    case RingState::critical:
      return criticalColour;
  }
  VORLI_ASSERT(false);
}

double clampedProgress(double progress) {
  return progress > 0.0 ? std::min(progress, 1.0) : 0.0;  // NaN counts as 0
}

}  // namespace

double MenuBarTickDial::calmedProgress(double ringProgress, double calmIntensity) {
  constexpr double progressAtFullCalm = 0.2;
  return calmIntensity * progressAtFullCalm + ringProgress * (1.0 - calmIntensity);
}

int MenuBarTickDial::filledTicks() const {
  return dimmed ? 0 : static_cast<int>(std::floor(clampedProgress(progress) * tickCount));
}

Colour MenuBarTickDial::filledColour() const {
  const Colour plain = colourOf(ringState(clampedProgress(progress))).pick(isDark);
  if (calmOverlay < leastVisibleCalm) return plain;
  return blend(plain, calmColour.pick(isDark), calmOverlay);
}

double MenuBarTickDial::filledAlpha(int tick, int filled) const {
  if (filled == 1) return maxFilledAlpha;
  return minFilledAlpha + (static_cast<double>(tick) / (filled - 1)) * (maxFilledAlpha - minFilledAlpha);
}

ports::StatusPicture MenuBarTickDial::picture(double sidePoints, double padding) const {
  const double radius = (sidePoints - 2.0 * padding) * 0.5;
  const double centre = sidePoints * 0.5;
  const int filled = filledTicks();
  const Colour full = filledColour();
  const Colour empty = (dimmed ? dimmedColour : emptyColour).pick(isDark);

  ports::StatusPicture picture{sidePoints, {}};
  picture.strokes.reserve(static_cast<std::size_t>(std::max(tickCount, 0)));
  for (int tick = 0; tick < tickCount; ++tick) {
    const double turn = static_cast<double>(tick) / tickCount;
    const double angle = turn * 2.0 * std::numbers::pi - std::numbers::pi / 2.0;
    const double across = radius * std::cos(angle);
    const double down = radius * std::sin(angle);
    const bool isFilled = tick < filled;
    picture.strokes.push_back({
        .fromX = centre + across * innerRadiusRatio,
        .fromY = centre + down * innerRadiusRatio,
        .toX = centre + across * outerRadiusRatio,
        .toY = centre + down * outerRadiusRatio,
        .width = radius * (isFilled ? filledStrokeRatio : emptyStrokeRatio),
        .colour = isFilled ? full.withAlpha(filledAlpha(tick, filled)) : empty,
    });
  }
  return picture;
}

}  // namespace vorli
