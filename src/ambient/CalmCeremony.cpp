#include "ambient/CalmCeremony.h"

#include <algorithm>
#include <cmath>

namespace vorli {
namespace {

constexpr double stepsPerSecond = 60.0;

// Share of a step by which rounding may move a time that is meant to be the beginning of that step.
constexpr double roundingAllowance = 1e-5;

// Quadratic ease-in-out.
double ease(double t) {
  if (t < 0.5) return 2.0 * t * t;
  const double rest = 2.0 - 2.0 * t;
  return 1.0 - rest * rest / 2.0;
}

double eased(int step, int steps) {
  return ease(static_cast<double>(step) / steps);
}

int stepCount(double durationSeconds) {
  return std::max(1, static_cast<int>(durationSeconds / (1.0 / stepsPerSecond)));
}

}  // namespace

CalmCeremony::CalmCeremony(double startedAt, double from, double riseDuration, double decayDuration)
    : startedAt_(startedAt),
      from_(from),
      riseSteps_(stepCount(riseDuration)),
      decaySteps_(stepCount(decayDuration)) {}

double CalmCeremony::valueAt(double time) const {
  const int step = stepAt(time);
  if (step < riseSteps_) return from_ + eased(step, riseSteps_) * (1.0 - from_);
  return 1.0 - eased(step - riseSteps_, decaySteps_);
}

double CalmCeremony::turnsAfter(double time) const {
  const int steps = stepAt(time) < riseSteps_ ? riseSteps_ : riseSteps_ + decaySteps_;
  return startedAt_ + steps * stepSeconds;
}

int CalmCeremony::stepAt(double time) const {
  const double steps = std::floor((time - startedAt_) / stepSeconds + roundingAllowance);
  return static_cast<int>(std::clamp(steps, 0.0, static_cast<double>(riseSteps_ + decaySteps_)));
}

}  // namespace vorli
