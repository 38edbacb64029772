#pragma once

#include "base/Animated.h"
#include "base/Observable.h"
#include "base/Scheduler.h"
#include "sampling/RingState.h"

#include <optional>
#include <string>

namespace vorli {

/// What the popover keeps of a polish; it outlives the popover's closing. The ring's values follow the
/// monitor except during a polish. Subscribers are called inside the animation that a change belongs to, so
/// Animated values that they set move with it. Main thread.
struct PolishState {
  explicit PolishState(const Scheduler& clock);

  /// A polish is under way, from the press until the end of the settle: the flow's one lock.
  Observable<bool> isReleasing{false};
  Animated<double> animatedProgress;  // that the ring shows, 0 to 1
  Observable<RingState> animatedState{RingState::healthy};
  Animated<double> celebrationScale;  // of the ring
  /// Replaces the status sentence while set.
  Observable<std::optional<std::string>> postClearSentence;
  Observable<std::optional<int>> postClearPercentage;
  /// Each increment starts the aurora's sequence.
  Observable<int> auroraClearTrigger{0};
};

}  // namespace vorli
