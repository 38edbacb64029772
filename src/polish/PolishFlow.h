#pragma once

#include "ambient/CelebrationGlowController.h"
#include "ambient/ClearState.h"
#include "base/HostSystem.h"
#include "base/NotificationCenter.h"
#include "base/Scheduler.h"
#include "base/Task.h"
#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "polish/AudioActivityProbe.h"
#include "polish/HelperWorkRace.h"
#include "polish/PolishState.h"
#include "polish/PolishTexts.h"
#include "polish/PolishTimings.h"
#include "ports/ApplicationBundle.h"
#include "ports/CalendarClock.h"
#include "ports/Haptics.h"
#include "ports/MemoryCounters.h"
#include "ports/Workspace.h"
#include "sampling/SystemMonitor.h"
#include "settings/AppSettings.h"

namespace vorli {

/// Dependencies of a polish.
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
  const PolishTexts& texts = ofThisSystem<PolishTexts>();
};

/// The main action, from the press until the ring shows the true value again. The drain is not a measurement:
/// the ring is sent to zero at the press, held there, and moves to the true value at the end. No failure of
/// the helper stops the ceremony; each is reported in a sentence. Main thread.
class PolishFlow {
 public:
  PolishFlow(PolishState& state, const PolishServices& services);

  /// Handles one press. Does nothing on a calm ring or while a polish is running. A cancelled task skips its
  /// sleeps, but no other step. Blocks for the audio probe and for quitting hidden applications.
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
