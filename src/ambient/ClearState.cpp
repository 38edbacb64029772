#include "ambient/ClearState.h"

#include "base/Sleep.h"

#include <algorithm>

namespace vorli {
namespace {

constexpr double framesPerSecond = 60.0;
constexpr double frameSleepSeconds = 0.016666666;

// Quadratic, in and out.
double ease(double t) {
  if (t < 0.5) return 2.0 * t * t;
  const double rest = 2.0 - 2.0 * t;
  return 1.0 - rest * rest / 2.0;
}

int frameCount(double durationSeconds) {
  return std::max(1, static_cast<int>(durationSeconds / (1.0 / framesPerSecond)));
}

}  // namespace

ClearState::ClearState(Scheduler& scheduler) : scheduler_(scheduler), tasks_(scheduler) {}

void ClearState::runCeremony(double riseDuration, double decayDuration) {
  ceremonyTask_.cancel();
  ceremonyTask_ = tasks_.spawn(ceremony(riseDuration, decayDuration));
}

Task<> ClearState::ceremony(double riseDuration, double decayDuration) {
  co_await moveTo(1.0, riseDuration);
  const bool cancelled = co_await isCancelled();
  if (cancelled) co_return;
  co_await moveTo(0.0, decayDuration);
}

Task<> ClearState::moveTo(double target, double durationSeconds) {
  const double start = calmIntensity.get();
  const int frames = frameCount(durationSeconds);
  for (int frame = 0; frame <= frames; ++frame) {
    const bool cancelled = co_await isCancelled();
    if (cancelled) co_return;
    const double t = static_cast<double>(frame) / frames;
    calmIntensity = start + ease(t) * (target - start);
    if (frame == frames) co_return;
    // A sleep that is cut short needs no answer of its own: the next frame asks for the cancellation.
    static_cast<void>(co_await sleepFor(scheduler_, frameSleepSeconds));
  }
}

}  // namespace vorli
