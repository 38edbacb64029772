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

/// What one race is about. `startedAt` is a time of the scheduler.
struct HelperWorkRequest {
  bool helperReady = false;
  bool audioActive = false;  // the purge is left out
  double minDisplayTime = 0.0;
  double startedAt = 0.0;
  std::shared_ptr<SnapshotBox> snapshotBox;
};

/// The helper's part of a polish, raced against the time that the user is shown something else. The work that
/// loses goes on in the background, and lands when it lands. Main thread.
class HelperWorkRace {
 public:
  HelperWorkRace(Scheduler& scheduler, HelperManager& helperManager, ports::MemoryCounters& memory,
                 const ports::CalendarClock& calendar);

  /// Fills the request's box with the memory as it is before the work. True when the helper was reached, as
  /// far as is known when the budget ends: one that is still at work counts.
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
