#pragma once

#include "ports/Announcements.h"
#include "ports/BackgroundWork.h"
#include "ports/InstalledApplications.h"
#include "ports/LaunchControl.h"
#include "ports/ProcessUsage.h"
#include "ports/StartupFiles.h"
#include "ports/StartupPlaces.h"
#include "ports/StartupSettings.h"
#include "ports/SystemStartupLists.h"
#include "ports/SystemUnits.h"
#include "ports/TextOrder.h"

namespace vorli::ports {

/// The part of a host that only startup items need.
struct StartupPorts {
  StartupFiles& files;
  InstalledApplications& applications;
  ProcessUsage& processes;
  LaunchControl& launchControl;
  SystemUnits& systemUnits;
  SystemStartupLists& lists;
  StartupSettings& settings;
  const TextOrder& textOrder;
  Announcements& announcements;
  BackgroundWork& background;  // used for nothing else
  const StartupPlaces& places;
};

}  // namespace vorli::ports
