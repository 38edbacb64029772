#pragma once

#include "startup/StartupItems.h"
#include "tests/fakes/Announcements.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/InstalledApplications.h"
#include "tests/fakes/LaunchControl.h"
#include "tests/fakes/ProcessUsage.h"
#include "tests/fakes/StartupFiles.h"
#include "tests/fakes/StartupSettings.h"
#include "tests/fakes/SystemStartupLists.h"
#include "tests/fakes/SystemUnits.h"
#include "tests/fakes/TextOrder.h"

namespace vorli::fakes {

/// Everything that startup items need from a host. A test sets the places before it makes the ports.
struct StartupHost {
  explicit StartupHost(Scheduler& scheduler) : background(scheduler) {}

  ports::StartupPorts ports() {
    return {files,    applications, usage,         launchControl, units, lists,
            settings, textOrder,    announcements, background,    places};
  }

  StartupFiles files;
  InstalledApplications applications;
  ProcessUsage usage;
  LaunchControl launchControl;
  SystemUnits units;
  SystemStartupLists lists;
  StartupSettings settings;
  TextOrder textOrder;
  Announcements announcements;
  BackgroundWork background;
  ports::StartupPlaces places;
};

}  // namespace vorli::fakes
