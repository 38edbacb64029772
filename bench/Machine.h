#pragma once

#include "insights/IdleAppTracker.h"
#include "insights/ProcessEnumerator.h"
#include "linux/kernel/CPUCounters.h"
#include "linux/kernel/MemoryCounters.h"
#include "linux/kernel/PowerSources.h"
#include "linux/kernel/ProcessTable.h"
#include "linux/kernel/ThermalSensors.h"
#include "ports/Workspace.h"
#include "posix/CalendarClock.h"
#include "sampling/SystemMonitor.h"
#include "settings/AppSettings.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/Workspace.h"

namespace vorli::bench {

/// The program's sampling on this machine's real counters. Settings, time and, without a `workspace`, the
/// desktop are fakes: the number of processes does not change what a tick spends on them.
class Machine {
 public:
  explicit Machine(ports::Workspace* workspace = nullptr);

  void enumerate();
  void refresh() { monitor_.refresh(); }

 private:
  fakes::ManualScheduler scheduler_;
  fakes::KeyValueStore defaults_;
  fakes::Workspace fullDesktop_;
  ports::Workspace& workspace_;
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
