#pragma once

#include <optional>
#include <utility>

namespace vorli {

/// A timing curve from (0, 0) to (1, 1) with two control points, as in CSS and Core Animation. Both x values
/// lie in 0..1. The y values may lie outside; the curve then overshoots.
struct CubicBezier {
  double x1, y1, x2, y2;

  /// The y of the curve at `x`, which is clamped to 0..1.
  double at(double x) const;

  bool operator==(const CubicBezier&) const = default;
};

/// Describes how a value moves from the one shown to the one set. A plain value: pass it to `withAnimation`.
struct Animation {
  enum class Kind { curve, spring };
  enum class Reversal { none, autoreverse };

  Kind kind = Kind::curve;
  CubicBezier curve{0.0, 0.0, 1.0, 1.0};
  double durationSeconds = 0.0;  // of one pass of a curve
  double responseSeconds = 0.0;  // a spring's period when it is not damped
  double dampingFraction = 1.0;  // 1 is critical damping, less overshoots; more than 1 counts as 1
  double delaySeconds = 0.0;
  int passes = 1;  // 0 repeats forever
  Reversal reversal = Reversal::none;

  static Animation linear(double seconds);
  static Animation easeIn(double seconds);
  static Animation easeOut(double seconds);
  static Animation easeInOut(double seconds);
  /// Core Animation's default timing function.
  static Animation standard(double seconds);
  static Animation timingCurve(CubicBezier curve, double seconds);
  static Animation spring(double responseSeconds, double dampingFraction);

  Animation delayed(double seconds) const;
  Animation repeated(int passes, Reversal reversal) const;
  Animation repeatedForever(Reversal reversal) const { return repeated(0, reversal); }

  /// The fraction of the distance covered `elapsed` seconds after the end of the delay: 0 before the start,
  /// exactly 1 from `activeSeconds` on, and outside 0..1 where the curve or spring overshoots.
  /// `startVelocity` is in distances per second and only affects a spring.
  double progress(double elapsed, double startVelocity = 0.0) const;

  /// Length of one pass: a curve's duration, or the time after which a spring from rest stays within a
  /// thousandth.
  double passSeconds() const;

  /// Time from the end of the delay to rest; infinite for an animation that repeats forever.
  double activeSeconds() const;

  bool operator==(const Animation&) const = default;
};

namespace detail {
std::optional<Animation>& currentAnimation();
}

/// Runs `body`; every Animated value set inside moves by `animation` instead of jumping. When calls are
/// nested, the innermost wins.
template <typename Body>
void withAnimation(const Animation& animation, Body&& body) {
  auto outer = std::exchange(detail::currentAnimation(), animation);
  std::forward<Body>(body)();
  detail::currentAnimation() = outer;
}

/// Like `withAnimation`, but every value set inside jumps, even when the call is nested in `withAnimation`.
template <typename Body>
void withoutAnimation(Body&& body) {
  auto outer = std::exchange(detail::currentAnimation(), std::nullopt);
  std::forward<Body>(body)();
  detail::currentAnimation() = outer;
}

}  // namespace vorli
