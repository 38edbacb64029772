#pragma once

#include "base/Scheduler.h"
#include "base/Task.h"
#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "polish/AudioActivityProbe.h"
#include "ports/CalendarClock.h"
#include "sampling/MemorySnapshot.h"
#include "sampling/SystemMonitor.h"
#include "settings/AppSettings.h"

namespace vorli {

/// Polishes without a ceremony: flush, purge, and a fresh sample of the machine. Nothing is shown. Main
/// thread.
class QuietPolish {
 public:
  enum class Start { started, helperNotInstalled };

  QuietPolish(Scheduler& scheduler, const ports::CalendarClock& calendar, HelperManager& helperManager,
              SystemMonitor& systemMonitor, AppSettings& settings, AudioActivityProbe& audio);

  /// Checks each memory sample for an automatic polish: polishes under pressure when a setting asks for it,
  /// at most every 300 seconds. Skips the purge while sound is playing. Blocks for the audio probe when it
  /// polishes.
  void checkPressure(const MemorySnapshot& memory);

  /// Polishes for the menu and the hot key. Ignores sound and the cooldown, and does not start one.
  [[nodiscard]] Start polishNow();

  /// Polishes for a notification's button; ends with the work. Does nothing without the helper. Blocks for
  /// the audio probe after the flush.
  Task<> polishFromNotification();

 private:
  enum class Purge { performed, skipped };

  bool isHelperEnabled() const;
  bool isCoolingDown() const;
  Task<> polish(Purge purge);

  const ports::CalendarClock& calendar_;
  HelperManager& helperManager_;
  SystemMonitor& systemMonitor_;
  AppSettings& settings_;
  AudioActivityProbe& audio_;
  TaskScope tasks_;
};

}  // namespace vorli
