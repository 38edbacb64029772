#pragma once

#include "base/Scheduler.h"
#include "macos/session/Announcements.h"
#include "macos/session/StartupSettings.h"
#include "macos/startup/FileSystemCalls.h"
#include "macos/startup/InstalledApplications.h"
#include "macos/startup/LaunchControl.h"
#include "macos/startup/ProcessUsage.h"
#include "macos/startup/StartupPlaces.h"
#include "macos/startup/SystemStartupLists.h"
#include "macos/startup/SystemUnits.h"
#include "ports/StartupPorts.h"
#include "posix/BackgroundWork.h"
#include "posix/StartupFiles.h"
#include "posix/TextOrder.h"

#include <string>

namespace vorli::machost {

/// All back ends of startup items. None of them reads, connects or starts a thread before it is used.
class StartupBackEnds {
 public:
  StartupBackEnds(Scheduler& scheduler, const std::string& home)
      : places_(startupPlacesOfThisUser(home)), background_(scheduler) {}

  ports::StartupPorts ports() {
    return {files_,    applications_, usage_,         launchControl_, systemUnits_, lists_,
            settings_, textOrder_,    announcements_, background_,    places_};
  }

 private:
  const ports::StartupPlaces places_;
  posix::StartupFiles files_{fileSystemCalls()};
  InstalledApplications applications_;
  ProcessUsage usage_;
  LaunchControl launchControl_;
  SystemUnits systemUnits_;
  SystemStartupLists lists_;
  StartupSettings settings_;
  posix::TextOrder textOrder_;
  Announcements announcements_;
  posix::BackgroundWork background_;
};

}  // namespace vorli::machost
