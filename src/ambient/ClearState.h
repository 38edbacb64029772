#pragma once

#include "ambient/CalmIntensity.h"
#include "base/Scheduler.h"

namespace vorli {

/// The calm after a polish: one number that rises to 1, decays over minutes, and softens everything that
/// shows the state. Main thread.
class ClearState {
 public:
  explicit ClearState(Scheduler& scheduler) : calmIntensity(scheduler), scheduler_(scheduler) {}

  CalmIntensity calmIntensity;

  /// Raises the calm from its current value to 1, then lowers it to 0. A ceremony in progress stops at its
  /// current value. Both durations are kept however busy the machine is.
  void runCeremony(double riseDuration, double decayDuration);

 private:
  const Scheduler& scheduler_;
};

}  // namespace vorli
