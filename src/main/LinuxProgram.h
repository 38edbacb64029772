#pragma once

#include "ports/CPUCounters.h"
#include "ports/CalendarClock.h"
#include "ports/MemoryCounters.h"
#include "ports/PowerSources.h"
#include "ports/ThermalSensors.h"

#include <functional>
#include <memory>

namespace vorli {

class AppDelegate;
class ClearState;
class HelperManager;
class NotificationCenter;
class Scheduler;
class SuspendedAppsManager;
class SystemMonitor;

/// The back ends that the ring is computed from.
struct SamplingBackEnds {
  std::unique_ptr<ports::CalendarClock> calendar;
  std::unique_ptr<ports::MemoryCounters> memory;
  std::unique_ptr<ports::CPUCounters> cpu;
  std::unique_ptr<ports::ThermalSensors> thermal;
  std::unique_ptr<ports::PowerSources> power;

  static SamplingBackEnds ofThisMachine();
};

/// The services of the running program that a test looks at or changes.
struct WatchedServices {
  SystemMonitor& systemMonitor;
  SuspendedAppsManager& suspendedAppsManager;
  Scheduler& scheduler;
  NotificationCenter& notifications;
  HelperManager& helperManager;
  ClearState& clearState;
  AppDelegate& delegate;
};

/// Builds the Linux program on `backEnds` and runs it to its end. Returns the exit status. `watch` is called
/// once everything is built and before the first sample.
int runLinuxProgram(int argc, char** argv, SamplingBackEnds backEnds,
                    std::function<void(const WatchedServices&)> watch = nullptr);

}  // namespace vorli
