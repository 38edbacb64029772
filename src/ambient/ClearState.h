#pragma once

#include "base/Observable.h"
#include "base/Scheduler.h"
#include "base/SharedInstance.h"
#include "base/TaskScope.h"

namespace vorli {

/// The calm after a polish: one number that rises to 1 and decays over minutes, and holds down everything
/// that shows the state. Main thread.
class ClearState : public SharedInstance<ClearState> {
 public:
  explicit ClearState(Scheduler& scheduler);

  Observable<double> calmIntensity{0.0};

  /// Raises the calm from where it stands to 1, then lets it fall to 0, 60 steps a second. A running ceremony
  /// ends at its next frame.
  void runCeremony(double riseDuration, double decayDuration);

 private:
  Task<> ceremony(double riseDuration, double decayDuration);
  Task<> moveTo(double target, double durationSeconds);

  Scheduler& scheduler_;
  TaskHandle ceremonyTask_;
  TaskScope tasks_;
};

}  // namespace vorli
