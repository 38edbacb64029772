#pragma once

#include "base/Animated.h"
#include "base/Colour.h"
#include "base/Scheduler.h"
#include "ports/GlowOverlay.h"

namespace vorli {

/// State shown by the celebration's view.
struct CelebrationGlowState {
  explicit CelebrationGlowState(const Scheduler& clock);

  Animated<Colour> currentColor;  // transparent at the start
  Animated<double> intensity;     // opacity at the edge of the screen
};

/// Flashes a gentle light from the edges of the screen during a polish: it fades in with the ring's colour,
/// turns to the calm colour and fades out. Main thread.
class CelebrationGlowController {
 public:
  CelebrationGlowController(const Scheduler& clock, ports::GlowOverlay& window);

  void celebrate(Colour colour);

  const CelebrationGlowState& state() const { return state_; }

 private:
  ports::GlowOverlay& window_;
  bool hasWindow_ = false;  // built on first use, then kept
  CelebrationGlowState state_;
};

}  // namespace vorli
