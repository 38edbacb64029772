#pragma once

#include "base/HostSystem.h"
#include "base/Scheduler.h"
#include "helper/HelperManager.h"
#include "ports/BackgroundWork.h"
#include "ports/CalendarClock.h"
#include "ports/KeyValueStore.h"
#include "ports/StartupPorts.h"
#include "ports/Workspace.h"
#include "startup/StartupAppsView.h"
#include "startup/StartupItemService.h"
#include "startup/StartupScan.h"
#include "startup/StartupWays.h"
#include "startup/WorkQueue.h"

#include <memory>

namespace vorli {

/// Dependencies of the startup items on the rest of the program.
struct StartupSurroundings {
  Scheduler& scheduler;
  const ports::CalendarClock& calendar;
  ports::KeyValueStore& defaults;
  ports::Workspace& workspace;
  HelperManager& helperManager;
};

/// The startup items of this system, from their sources to the list that shows them. Nothing is read before
/// the list appears. Main thread.
class StartupItems {
 public:
  StartupItems(const StartupSurroundings& surroundings, const ports::StartupPorts& ports,
               HostSystem system = hostSystem)
      : background_(ports.background),
        worker_(surroundings.scheduler, ports.background),
        ways_(startupWaysOf(
            system, {surroundings.scheduler, ports.files, ports.applications, ports.launchControl,
                     ports.systemUnits, ports.lists, ports.places, surroundings.helperManager, worker_})),
        scan_({ports.files, ports.applications, ports.processes, ports.textOrder}, ways_->sources()),
        service({surroundings.scheduler, surroundings.calendar, surroundings.defaults, surroundings.workspace,
                 ports.settings, scan_, ways_->controls(), worker_}),
        view({surroundings.scheduler, surroundings.calendar, surroundings.defaults,
              surroundings.helperManager, service, ports.announcements},
             system) {}
  /// Waits for the scan that is in progress, which uses the sources.
  ~StartupItems() { background_.abandon(); }
  StartupItems(const StartupItems&) = delete;
  StartupItems& operator=(const StartupItems&) = delete;

 private:
  ports::BackgroundWork& background_;
  WorkQueue worker_;
  const std::unique_ptr<StartupWays> ways_;
  const StartupScan scan_;

 public:
  StartupItemService service;
  StartupAppsView view;
};

}  // namespace vorli
