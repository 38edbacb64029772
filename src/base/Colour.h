#pragma once

namespace vorli {

/// An sRGB colour; every component from 0 to 1, not premultiplied.
struct Colour {
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
  double alpha = 1.0;

  constexpr Colour withAlpha(double opacity) const { return {red, green, blue, opacity}; }

  bool operator==(const Colour&) const = default;
};

/// Interpolates from `from` (factor 0) to `to` (factor 1), linearly in the sRGB components. The factor is
/// clamped to 0..1. The result is always opaque.
Colour blend(const Colour& from, const Colour& to, double factor);

}  // namespace vorli
