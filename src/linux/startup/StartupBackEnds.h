#pragma once

#include "base/Scheduler.h"
#include "linux/session/Announcements.h"
#include "linux/session/StartupSettings.h"
#include "linux/startup/FileSystemCalls.h"
#include "linux/startup/InstalledApplications.h"
#include "linux/startup/LaunchControl.h"
#include "linux/startup/ProcessUsage.h"
#include "linux/startup/StartupPlaces.h"
#include "linux/startup/SystemStartupLists.h"
#include "linux/startup/SystemUnits.h"
#include "ports/StartupPorts.h"
#include "posix/BackgroundWork.h"
#include "posix/StartupFiles.h"
#include "posix/TextOrder.h"

#include <string>

namespace vorli::linuxhost {

/// All back ends of startup items. None of them reads, connects or starts a thread before it is used.
class StartupBackEnds {
 public:
  StartupBackEnds(Scheduler& scheduler, const std::string& home)
      : places_(startupPlacesOfThisUser(home)), settings_(places_.desktops), background_(scheduler) {}

  ports::StartupPorts ports() {
    return {files_,    applications_, usage_,         launchControl_, systemUnits_, lists_,
            settings_, textOrder_,    announcements_, background_,    places_};
  }

 private:
  const ports::StartupPlaces places_;
  posix::StartupFiles files_{fileSystemCalls()};
  InstalledApplications applications_{DesktopEntryIndex::Places::ofThisUser()};
  ProcessUsage usage_;
  LaunchControl launchControl_;
  SystemUnits systemUnits_;
  SystemStartupLists lists_;
  StartupSettings settings_;
  posix::TextOrder textOrder_;
  Announcements announcements_;
  posix::BackgroundWork background_;
};

}  // namespace vorli::linuxhost
