#pragma once

#include "base/Scheduler.h"
#include "base/Task.h"
#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "polish/HelperResultBox.h"
#include "ports/CalendarClock.h"
#include "ports/MemoryCounters.h"

#include <memory>

namespace vorli {

/// Input of one race. `startedAt` is a time of the scheduler.
struct HelperWorkRequest {
  bool helperReady = false;
  bool audioActive = false;  // skips the purge
  double minDisplayTime = 0.0;
  double startedAt = 0.0;
  std::shared_ptr<SnapshotBox> snapshotBox;
};

/// Races the helper's part of a polish against the time for which the popover shows its animation. Work that
/// loses the race finishes in the background. Main thread.
class HelperWorkRace {
 public:
  HelperWorkRace(Scheduler& scheduler, HelperManager& helperManager, ports::MemoryCounters& memory,
                 const ports::CalendarClock& calendar);

  /// Fills the request's box with a snapshot of memory from before the work. True when the helper was
  /// reached, as far as is known when the budget ends: a helper that is still working counts.
  Task<bool> runHelperWorkRacingDisplayBudget(HelperWorkRequest request);

 private:
  Task<> work(bool audioActive, std::shared_ptr<HelperResultBox> box);
  Task<> flushDNS(std::shared_ptr<HelperWorkResult> replies);
  Task<> purgeMemory(std::shared_ptr<HelperWorkResult> replies);

  Scheduler& scheduler_;
  HelperManager& helperManager_;
  ports::MemoryCounters& memory_;
  const ports::CalendarClock& calendar_;
  TaskScope tasks_;
};

}  // namespace vorli
