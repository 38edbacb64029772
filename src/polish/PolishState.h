#pragma once

#include "base/Animated.h"
#include "base/Published.h"
#include "base/Scheduler.h"
#include "sampling/RingState.h"

#include <optional>
#include <string>

namespace vorli {

class PolishFlow;

/// State of a polish that the popover shows; kept while the popover is closed. The ring's values follow the
/// monitor except during a polish. Subscribers are called inside the animation of the change, so
/// animated values that they set move with it. Main thread.
struct PolishState {
  explicit PolishState(const Scheduler& clock);

  /// True while a polish is in progress, from the press until the ring has settled: the flow's only lock.
  Published<bool, PolishFlow> isReleasing{false};
  PublishedAnimated<double, PolishState> animatedProgress;  // shown by the ring, 0 to 1
  Published<RingState, PolishState> animatedState{RingState::healthy};
  PublishedAnimated<double, PolishFlow> celebrationScale;  // scale of the ring
  /// Replaces the status sentence while set.
  Published<std::optional<std::string>, PolishFlow> postClearSentence;
  Published<std::optional<int>, PolishFlow> postClearPercentage;
  /// Starts the aurora's sequence at each increment.
  Published<int, PolishFlow> auroraClearTrigger{0};

 protected:
  friend PolishFlow;
  void setAnimatedProgress(double progress) { animatedProgress = progress; }
  void setAnimatedState(RingState state) { animatedState = state; }
};

}  // namespace vorli
