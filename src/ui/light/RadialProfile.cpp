#include "ui/light/RadialProfile.h"

#include <algorithm>
#include <cmath>

namespace vorli::ui {
namespace {

// The modified Bessel function of order zero, times exp(-z). Uses the polynomials 9.8.1 and 9.8.2 of
// Abramowitz and Stegun; accurate to 2e-7.
double scaledBesselI0(double z) {
  if (z < 3.75) {
    const double t = (z / 3.75) * (z / 3.75);
    return std::exp(-z) *
           (1.0 +
            t * (3.5156229 +
                 t * (3.0899424 + t * (1.2067492 + t * (0.2659732 + t * (0.0360768 + t * 0.0045813))))));
  }
  const double t = 3.75 / z;
  const double tail =
      t * (0.00916281 + t * (-0.02057706 + t * (0.02635537 + t * (-0.01647633 + t * 0.00392377))));
  return (0.39894228 + t * (0.01328592 + t * (0.00225319 + t * (-0.00157565 + tail)))) / std::sqrt(z);
}

Premultiplied colourAt(const AuroraGradient& gradient, double position) {
  const AuroraGradient::Stop* from = &gradient.stops.front();
  for (const auto& to : gradient.stops) {
    if (position < to.at) {
      if (&to == from) break;
      const auto share = static_cast<float>((position - from->at) / (to.at - from->at));
      return Premultiplied::of(from->colour, from->colour.alpha) * (1.0F - share) +
             Premultiplied::of(to.colour, to.colour.alpha) * share;
    }
    from = &to;
  }
  return Premultiplied::of(from->colour, from->colour.alpha);
}

}  // namespace

Premultiplied Premultiplied::of(const Colour& colour, double opacity) {
  return {static_cast<float>(colour.red * opacity), static_cast<float>(colour.green * opacity),
          static_cast<float>(colour.blue * opacity), static_cast<float>(opacity)};
}

RadialProfile RadialProfile::blurred(const AuroraGradient& gradient, double deviation) {
  constexpr int steps = 96;
  const double reach = gradient.stops.back().at * gradient.radius + 3.0 * deviation;
  const double step = reach / steps;
  const double variance = deviation * deviation;
  RadialProfile profile;
  profile.end_ = reach;
  for (int k = 0; k <= intervals; ++k) {
    const double r = reach * k / intervals;
    Premultiplied sum;
    for (int j = 0; j < steps; ++j) {
      const double s = (j + 0.5) * step;
      const double weight = s / variance * std::exp(-(r - s) * (r - s) / (2.0 * variance)) *
                            scaledBesselI0(r * s / variance) * step;
      sum = sum + colourAt(gradient, s / gradient.radius) * static_cast<float>(weight);
    }
    profile.stops_[static_cast<std::size_t>(k)] = sum;
  }
  return profile;
}

Premultiplied RadialProfile::at(double radius) const {
  return atStop(static_cast<float>(radius / end_ * intervals));
}

RadialProfile RadialProfile::between(const RadialProfile& from, const RadialProfile& to, double share) {
  RadialProfile profile;
  profile.end_ = from.end_ + (to.end_ - from.end_) * share;
  const auto part = static_cast<float>(share);
  for (std::size_t i = 0; i < profile.stops_.size(); ++i) {
    profile.stops_[i] = from.stops_[i] * (1.0F - part) + to.stops_[i] * part;
  }
  return profile;
}

}  // namespace vorli::ui
