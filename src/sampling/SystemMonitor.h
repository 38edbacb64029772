#pragma once

#include "app/AppSettings.h"
#include "base/Observable.h"
#include "base/RepeatingTimer.h"
#include "base/SharedInstance.h"
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

#include <memory>
#include <optional>
#include <vector>

namespace vorli {

/// How often the machine is looked at: every 2 seconds while the user looks on, every 15 otherwise.
enum class MonitorCadence { active, idle };

double periodSeconds(MonitorCadence cadence);

/// What the monitor reads from.
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

/// The shared sampling loop: one coherent look at the machine per tick, published to whoever subscribes.
/// Holds `ringProgress`, the smoothed worst of seven signals of distress. Knows none of its consumers. Main
/// thread.
class SystemMonitor : public SharedInstance<SystemMonitor> {
 public:
  /// A look at the processes that took longer than this is not taken on the main thread by the next timer.
  static constexpr double longestOnMainThread = 0.008;

  SystemMonitor(const SystemMonitorPorts& ports, AppSettings& settings, IdleAppTracker& idleTracker);
  ~SystemMonitor();

  Observable<MemorySnapshot> memory{MemorySnapshot::empty};
  Observable<CPUSnapshot> cpu{CPUSnapshot::empty};
  Observable<ThermalSnapshot> thermal{ThermalSnapshot::empty};
  Observable<std::vector<ProcessSnapshot>> topMemoryHogs;  // at most 5, largest residentBytes first
  Observable<std::vector<ProcessSnapshot>> topCPUHogs;     // at most 5, largest cpuFraction first
  Observable<std::vector<IdleApp>> idleApps;               // longest idle first
  Observable<std::vector<OrphanHelper>> orphanHelpers;     // largest first
  Observable<std::vector<LeakyApp>> leakyApps;             // largest first
  Observable<Date> lastUpdate{Date::distantPast()};
  Observable<double> ringProgress{0.0};

  /// Who changes it calls `restartTimer` as well.
  MonitorCadence cadence = MonitorCadence::idle;

  /// One whole tick, at once; one of the timer that is still under way is finished before. Each call moves
  /// the smoothing by one step, however short the time since the last.
  void refresh();

  /// Starts the timer anew with the period of `cadence`; it fires first after one whole period.
  void restartTimer();
  void stopTimer() { timer_.reset(); }
  bool hasTimer() const { return timer_ != nullptr; }

  /// The worst of the seven signals, from the published samples, 0 to 1, not smoothed.
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
  const std::vector<ProcessSnapshot>* processes_ = nullptr;  // of the last look
  double enumerationSeconds_ = 0.0;                          // that it took
  LargestRows largestRows_;
  IdleAppTracker& idleTracker_;
  OrphanHelperDetector orphanDetector_;
  LeakyAppDetector leakyDetector_;
  AppSettings& settings_;
  std::unique_ptr<RepeatingTimer> timer_;
  TaskScope tasks_;
};

}  // namespace vorli
