#pragma once

#include "ambient/AuroraField.h"
#include "base/Colour.h"

#include <array>

namespace vorli::ui {

/// A colour with its components multiplied by the opacity.
struct Premultiplied {
  float red = 0.0F, green = 0.0F, blue = 0.0F, alpha = 0.0F;

  static Premultiplied of(const Colour& colour, double opacity);
  Premultiplied operator*(float share) const {
    return {red * share, green * share, blue * share, alpha * share};
  }
  Premultiplied operator+(const Premultiplied& other) const {
    return {red + other.red, green + other.green, blue + other.blue, alpha + other.alpha};
  }
  /// Lays this colour over `below`.
  Premultiplied over(const Premultiplied& below) const { return *this + below * (1.0F - alpha); }
};

/// A round light, stored as its colour at 25 evenly spaced stops along the radius, up to `end` points from
/// the centre.
class RadialProfile {
 public:
  static constexpr int intervals = 24;

  /// Blurs a radial gradient with a Gaussian of standard deviation `deviation`, in points. The result is
  /// round again, so no picture is ever blurred. g(r) is the integral of
  /// f(s) s / d^2 exp(-(r^2 + s^2) / (2 d^2)) I0(r s / d^2) over s.
  static RadialProfile blurred(const AuroraGradient& gradient, double deviation);

  double end() const { return end_; }
  const Premultiplied& stop(int index) const { return stops_[static_cast<std::size_t>(index)]; }
  /// Colour at `radius` points from the centre; transparent beyond the end.
  Premultiplied at(double radius) const;
  /// Colour at `place`, measured in stops.
  Premultiplied atStop(float place) const {
    if (place >= intervals) return {};
    const int index = static_cast<int>(place);
    const float share = place - static_cast<float>(index);
    return stop(index) * (1.0F - share) + stop(index + 1) * share;
  }

  /// Interpolates between two blurs. The error is below half a step of 255 when their deviations differ by 2.
  static RadialProfile between(const RadialProfile& from, const RadialProfile& to, double share);

 private:
  double end_ = 0.0;
  std::array<Premultiplied, intervals + 1> stops_{};
};

}  // namespace vorli::ui
