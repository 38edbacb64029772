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

/// From `from` (factor 0) to `to` (factor 1), linear in the sRGB components. The factor is clamped to 0..1,
/// and the result is opaque whatever the two were.
Colour blend(const Colour& from, const Colour& to, double factor);

}  // namespace vorli
