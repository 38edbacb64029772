#include "base/Animation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace vorli {

namespace {

// A spring counts as at rest once it stays this close to its end value.
constexpr double springTolerance = 0.001;

double bezier(double a, double b, double t) {
  const double u = 1.0 - t;
  return 3.0 * u * u * t * a + 3.0 * u * t * t * b + t * t * t;
}

double bezierSlope(double a, double b, double t) {
  const double u = 1.0 - t;
  return 3.0 * u * u * a + 6.0 * u * t * (b - a) + 3.0 * t * t * (1.0 - b);
}

// The closed-form solution of a damped oscillator that starts at 0 with velocity `v` and comes to rest at 1.
double springAt(double response, double damping, double v, double t) {
  const double omega = 2.0 * std::numbers::pi / response;
  const double zeta = std::clamp(damping, 0.0, 1.0);
  if (zeta >= 1.0) return 1.0 - std::exp(-omega * t) * (1.0 + (omega - v) * t);
  const double damped = omega * std::sqrt(1.0 - zeta * zeta);
  const double envelope = std::exp(-zeta * omega * t);
  return 1.0 - envelope * (std::cos(damped * t) + (zeta * omega - v) / damped * std::sin(damped * t));
}

double springRest(double response, double damping) {
  const double omega = 2.0 * std::numbers::pi / response;
  const double zeta = std::clamp(damping, 0.0, 1.0);
  if (zeta <= 0.0) return std::numeric_limits<double>::infinity();
  if (zeta < 1.0) return std::log(1.0 / (springTolerance * std::sqrt(1.0 - zeta * zeta))) / (zeta * omega);
  double t = 1.0 / omega;
  while (std::exp(-omega * t) * (1.0 + omega * t) > springTolerance) t += 0.01 / omega;
  return t;
}

Animation curved(CubicBezier curve, double seconds) {
  Animation animation;
  animation.curve = curve;
  animation.durationSeconds = seconds;
  return animation;
}

}  // namespace

double CubicBezier::at(double x) const {
  if (x <= 0.0) return 0.0;
  if (x >= 1.0) return 1.0;
  double t = x;
  for (int i = 0; i < 8; ++i) {
    const double error = bezier(x1, x2, t) - x;
    if (std::abs(error) < 1e-9) return bezier(y1, y2, t);
    const double slope = bezierSlope(x1, x2, t);
    if (std::abs(slope) < 1e-7) break;
    t = std::clamp(t - error / slope, 0.0, 1.0);
  }
  double low = 0.0, high = 1.0;
  for (int i = 0; i < 60; ++i) {
    t = (low + high) / 2.0;
    (bezier(x1, x2, t) < x ? low : high) = t;
  }
  return bezier(y1, y2, t);
}

Animation Animation::linear(double seconds) {
  return curved({0.0, 0.0, 1.0, 1.0}, seconds);
}
Animation Animation::easeIn(double seconds) {
  return curved({0.42, 0.0, 1.0, 1.0}, seconds);
}
Animation Animation::easeOut(double seconds) {
  return curved({0.0, 0.0, 0.58, 1.0}, seconds);
}
Animation Animation::easeInOut(double seconds) {
  return curved({0.42, 0.0, 0.58, 1.0}, seconds);
}
Animation Animation::standard(double seconds) {
  return curved({0.25, 0.1, 0.25, 1.0}, seconds);
}
Animation Animation::timingCurve(CubicBezier curve, double seconds) {
  return curved(curve, seconds);
}

Animation Animation::spring(double responseSeconds, double dampingFraction) {
  Animation animation;
  animation.kind = Kind::spring;
  animation.responseSeconds = responseSeconds;
  animation.dampingFraction = dampingFraction;
  return animation;
}

Animation Animation::delayed(double seconds) const {
  Animation result = *this;
  result.delaySeconds += seconds;
  return result;
}

Animation Animation::repeated(int passes, Reversal reversal) const {
  Animation result = *this;
  result.passes = passes;
  result.reversal = reversal;
  return result;
}

double Animation::passSeconds() const {
  if (kind == Kind::curve) return std::max(durationSeconds, 0.0);
  return responseSeconds > 0.0 ? springRest(responseSeconds, dampingFraction) : 0.0;
}

double Animation::activeSeconds() const {
  return passes == 0 ? std::numeric_limits<double>::infinity() : passes * passSeconds();
}

double Animation::progress(double elapsed, double startVelocity) const {
  if (elapsed < 0.0) return 0.0;
  const double pass = passSeconds();
  if (pass <= 0.0 || elapsed >= activeSeconds()) return 1.0;

  const double whole = std::floor(elapsed / pass);
  double within = std::isfinite(pass) ? elapsed - whole * pass : elapsed;
  if (reversal == Reversal::autoreverse && std::fmod(whole, 2.0) == 1.0) within = pass - within;
  if (kind == Kind::curve) return curve.at(within / pass);
  return springAt(responseSeconds, dampingFraction, whole == 0.0 ? startVelocity : 0.0, within);
}

std::optional<Animation>& detail::currentAnimation() {
  thread_local std::optional<Animation> current;
  return current;
}

}  // namespace vorli
