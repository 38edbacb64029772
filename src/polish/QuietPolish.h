#pragma once

#include "app/AppSettings.h"
#include "base/Scheduler.h"
#include "base/Task.h"
#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "polish/AudioActivityProbe.h"
#include "ports/CalendarClock.h"
#include "sampling/MemorySnapshot.h"
#include "sampling/SystemMonitor.h"

namespace vorli {

/// The polishes without a ceremony: flush, purge, and a look at the machine. Nothing is shown. Main thread.
class QuietPolish {
 public:
  enum class Start { started, helperNotInstalled };

  QuietPolish(Scheduler& scheduler, const ports::CalendarClock& calendar, HelperManager& helperManager,
              SystemMonitor& systemMonitor, AppSettings& settings, AudioActivityProbe& audio);

  /// The automatic polish check, for each memory sample: polishes under pressure when a setting asks for it,
  /// at most every 300 seconds, and spares playing sound. Blocks for the audio probe when it polishes.
  void checkPressure(const MemorySnapshot& memory);

  /// The menu's and the hot key's polish. Asks for no sound and no cooldown, and starts none.
  [[nodiscard]] Start polishNow();

  /// The polish of a notification's button, to its end. Nothing without the helper. Listens for sound after
  /// the flush, and blocks for that.
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
