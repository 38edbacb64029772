#include "ambient/CelebrationGlowController.h"

#include "ambient/Palette.h"
#include "base/Animation.h"

#include <algorithm>

namespace vorli {

namespace {

constexpr Colour clear{0.0, 0.0, 0.0, 0.0};
constexpr double bandDepthPoints = 140.0;
constexpr double fullIntensity = 0.55;

// Seconds; delays count from the start of the flash, which is over after 2.8 seconds.
struct CelebrationGlowTimings {
  static constexpr double rise = 0.4;
  static constexpr double calmDelay = 0.4;
  static constexpr double calm = 1.5;
  static constexpr double leaveDelay = 1.9;
  static constexpr double leave = 0.9;
};

}  // namespace

CelebrationGlowState::CelebrationGlowState(const Scheduler& clock)
    : currentColor(clock, clear), intensity(clock, 0.0) {}

CelebrationGlowController::CelebrationGlowController(const Scheduler& clock, ports::GlowOverlay& window)
    : window_(window), state_(clock) {}

void CelebrationGlowController::celebrate(Colour colour) {
  if (!hasWindow_) hasWindow_ = window_.build(bandDepthPoints);

  withoutAnimation([&] {
    state_.currentColor = colour;
    state_.intensity = 0.0;
  });
  withAnimation(Animation::easeOut(CelebrationGlowTimings::rise), [&] { state_.intensity = fullIntensity; });
  withAnimation(Animation::easeInOut(CelebrationGlowTimings::calm).delayed(CelebrationGlowTimings::calmDelay),
                [&] { state_.currentColor = palette::calm; });
  withAnimation(Animation::easeIn(CelebrationGlowTimings::leave).delayed(CelebrationGlowTimings::leaveDelay),
                [&] { state_.intensity = 0.0; });

  if (!hasWindow_) return;
  window_.animate(
      [this](double time) {
        return ports::GlowPicture{state_.currentColor.shown(time), state_.intensity.shown(time)};
      },
      std::max(state_.currentColor.restsAt(), state_.intensity.restsAt()));
}

}  // namespace vorli
