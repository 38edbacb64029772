#pragma once

#include "app/AppSettings.h"
#include "insights/IdleAppTracker.h"
#include "insights/ProcessEnumerator.h"
#include "linux/CPUCounters.h"
#include "linux/MemoryCounters.h"
#include "linux/PowerSources.h"
#include "linux/ProcessTable.h"
#include "linux/ThermalSensors.h"
#include "posix/CalendarClock.h"
#include "sampling/SystemMonitor.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/Workspace.h"

namespace vorli::bench {

/// The sampling of the program on this machine's real counters. Desktop, settings and time are fakes: a tick
/// spends nothing there that the number of processes could change.
class Machine {
 public:
  Machine();

  void enumerate();
  void refresh() { monitor_.refresh(); }

 private:
  fakes::ManualScheduler scheduler_;
  fakes::KeyValueStore defaults_;
  fakes::Workspace workspace_;
  fakes::ApplicationBundle bundle_;
  fakes::BackgroundWork background_{scheduler_};
  posix::CalendarClock calendar_;
  linuxhost::MemoryCounters memory_;
  linuxhost::CPUCounters cpu_;
  linuxhost::ThermalSensors thermal_;
  linuxhost::PowerSources power_;
  linuxhost::ProcessTable processes_{calendar_};            // of the monitor
  linuxhost::ProcessTable enumeratedProcesses_{calendar_};  // of the enumerator alone
  AppSettings settings_{defaults_};
  IdleAppTracker idleTracker_{scheduler_, calendar_, defaults_, workspace_};
  ProcessEnumerator enumerator_{enumeratedProcesses_, workspace_, cpu_, calendar_};
  SystemMonitor monitor_;
};

}  // namespace vorli::bench
