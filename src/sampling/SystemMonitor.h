#pragma once

#include "base/Published.h"
#include "base/RepeatingTimer.h"
#include "base/TaskScope.h"
#include "insights/IdleAppTracker.h"
#include "insights/LeakyAppDetector.h"
#include "insights/OrphanHelperDetector.h"
#include "insights/ProcessEnumerator.h"
#include "ports/ApplicationBundle.h"
#include "ports/BackgroundWork.h"
#include "sampling/CPUStats.h"
#include "sampling/MemorySnapshot.h"
#include "sampling/ThermalSnapshot.h"
#include "settings/AppSettings.h"

#include <memory>
#include <optional>
#include <vector>

namespace vorli {

/// Sampling interval: every 2 seconds while the user is watching, every 15 seconds otherwise.
enum class MonitorCadence { active, idle };

double periodSeconds(MonitorCadence cadence);

/// The ports that the monitor reads.
struct SystemMonitorPorts {
  Scheduler& scheduler;
  const ports::CalendarClock& calendar;
  ports::MemoryCounters& memory;
  ports::CPUCounters& cpu;
  ports::ThermalSensors& thermal;
  ports::PowerSources& power;
  ports::ProcessTable& processes;
  ports::Workspace& workspace;
  const ports::ApplicationBundle& bundle;
  ports::BackgroundWork& background;
};

/// The shared sampling loop: takes one coherent sample of the machine per tick and publishes it to its
/// subscribers. Holds `ringProgress`, the smoothed maximum of all distress signals. Independent of its
/// consumers. Main thread.
class SystemMonitor {
 public:
  /// Longest enumeration of the processes on the main thread, in seconds. After a longer one, the next timer
  /// tick enumerates them in the background.
  static constexpr double longestOnMainThread = 0.008;

  SystemMonitor(const SystemMonitorPorts& ports, AppSettings& settings, IdleAppTracker& idleTracker);
  ~SystemMonitor();

  Published<MemorySnapshot, SystemMonitor> memory{MemorySnapshot::empty};
  Published<CPUSnapshot, SystemMonitor> cpu{CPUSnapshot::empty};
  Published<ThermalSnapshot, SystemMonitor> thermal{ThermalSnapshot::empty};
  Published<std::vector<ProcessSnapshot>, SystemMonitor> topMemoryHogs;  // at most 5 by residentBytes
  Published<std::vector<ProcessSnapshot>, SystemMonitor> topCPUHogs;     // at most 5 by cpuFraction
  Published<std::vector<IdleApp>, SystemMonitor> idleApps;               // longest idle first
  Published<std::vector<OrphanHelper>, SystemMonitor> orphanHelpers;     // largest first
  Published<std::vector<LeakyApp>, SystemMonitor> leakyApps;             // largest first
  Published<Date, SystemMonitor> lastUpdate{Date::distantPast()};
  Published<double, SystemMonitor> ringProgress{0.0};

  MonitorCadence cadence() const { return cadence_; }
  /// Restarts the timer, unless it has that cadence already.
  void setCadence(MonitorCadence cadence);

  /// Runs one whole tick now; a background tick in progress is finished first. Each call advances the
  /// smoothing by one step, however little time has passed since the last.
  void refresh();

  /// Restarts the timer with the period of the cadence; it first fires after one whole period.
  void restartTimer();
  void stopTimer() { timer_.reset(); }
  bool hasTimer() const { return timer_ != nullptr; }

  /// The maximum of all signals, from the published samples; 0 to 1, not smoothed.
  double targetRingProgress() const;

  const std::optional<MemorySnapshot>& previousMemorySnapshot() const { return previousMemorySnapshot_; }

 private:
  void lookAtProcesses();
  void publish();
  void refreshInBackground();
  template <typename Field>
  std::vector<ProcessSnapshot> largest(const std::vector<ProcessSnapshot>& rows,
                                       Field ProcessSnapshot::*field);
  void setPreviousMemory(const MemorySnapshot& before);
  ThermalSnapshot sampleThermal();
  void updateRingProgress();
  Task<> tick();

  SystemMonitorPorts ports_;
  bool hasSampledOnce_ = false;
  std::optional<MemorySnapshot> previousMemorySnapshot_;
  CPUStats cpuStats_;
  ProcessEnumerator processEnumerator_;
  const std::vector<ProcessSnapshot>* processes_ = nullptr;  // result of the last enumeration
  double enumerationSeconds_ = 0.0;                          // duration of the last enumeration
  LargestRows largestRows_;
  IdleAppTracker& idleTracker_;
  OrphanHelperDetector orphanDetector_;
  LeakyAppDetector leakyDetector_;
  AppSettings& settings_;
  MonitorCadence cadence_ = MonitorCadence::idle;
  std::unique_ptr<RepeatingTimer> timer_;
  TaskScope tasks_;
};

}  // namespace vorli
