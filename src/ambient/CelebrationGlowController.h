#pragma once

#include "base/Animated.h"
#include "base/Colour.h"
#include "base/Scheduler.h"
#include "base/SharedInstance.h"
#include "ports/GlowOverlay.h"

namespace vorli {

/// What the celebration's view shows.
struct CelebrationGlowState {
  explicit CelebrationGlowState(const Scheduler& clock);

  Animated<Colour> currentColor;  // clear at the start
  Animated<double> intensity;     // opacity at the edge of the screen
};

/// Flashes a gentle light from the edges of the screen at the moment of a polish: it comes up in the ring's
/// colour, turns calm, and leaves. Main thread.
class CelebrationGlowController : public SharedInstance<CelebrationGlowController> {
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
