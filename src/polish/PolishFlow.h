#pragma once

#include "ambient/CelebrationGlowController.h"
#include "ambient/ClearState.h"
#include "app/AppSettings.h"
#include "base/NotificationCenter.h"
#include "base/Scheduler.h"
#include "base/Task.h"
#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "polish/AudioActivityProbe.h"
#include "polish/HelperWorkRace.h"
#include "polish/PolishState.h"
#include "polish/PolishTimings.h"
#include "ports/ApplicationBundle.h"
#include "ports/CalendarClock.h"
#include "ports/Haptics.h"
#include "ports/MemoryCounters.h"
#include "ports/Workspace.h"
#include "sampling/SystemMonitor.h"

namespace vorli {

/// What a polish works with.
struct PolishServices {
  Scheduler& scheduler;
  NotificationCenter& notifications;
  SystemMonitor& systemMonitor;
  HelperManager& helperManager;
  AppSettings& settings;
  ClearState& clearState;
  CelebrationGlowController& celebrationGlow;
  AudioActivityProbe& audio;
  ports::Haptics& haptics;
  ports::Workspace& workspace;
  const ports::ApplicationBundle& bundle;
  ports::MemoryCounters& memory;
  const ports::CalendarClock& calendar;
};

/// The main action, from the press to the ring that stands again. The drain is no measurement: the ring is
/// sent to zero at the press, held there, and moves to the true value at the end. No failure of the helper
/// stops the ceremony; each ends in a sentence. Main thread.
class PolishFlow {
 public:
  PolishFlow(PolishState& state, const PolishServices& services);

  /// One press. Does nothing on a calm ring or while a polish runs. A cancelled task hurries through: its
  /// sleeps end at once, and no step is left out. Blocks for the audio probe and the hidden app quit.
  Task<> handleTap();

 private:
  void logEntry() const;
  bool isHelperEnabled() const;
  void enterPolish(bool helperReady, bool audioActive);
  void performPressCeremony();
  void drainRing();
  void showOutcome(bool helperReady, bool reachable, bool audioActive, const SnapshotBox& before);
  void growRing();
  void shrinkRing();
  void closePopover();
  void raiseRingToTruth(const PolishPace& pace, const SnapshotBox& before);
  void leavePolish();
  Task<> watchdog();

  PolishState& state_;
  PolishServices services_;
  HelperWorkRace race_;
  TaskScope tasks_;
};

}  // namespace vorli
