#pragma once

#include "base/HostSystem.h"
#include "base/Scheduler.h"
#include "helper/HelperManager.h"
#include "ports/InstalledApplications.h"
#include "ports/LaunchControl.h"
#include "ports/StartupFiles.h"
#include "ports/StartupPlaces.h"
#include "ports/SystemStartupLists.h"
#include "ports/SystemUnits.h"
#include "startup/StartupControl.h"
#include "startup/StartupSource.h"
#include "startup/WorkQueue.h"

#include <memory>
#include <vector>

namespace vorli {

/// Dependencies of the sources and controls of a system's startup items.
struct StartupWayNeeds {
  Scheduler& scheduler;
  ports::StartupFiles& files;
  ports::InstalledApplications& applications;
  ports::LaunchControl& launchControl;
  ports::SystemUnits& systemUnits;
  ports::SystemStartupLists& lists;
  const ports::StartupPlaces& places;
  HelperManager& helperManager;
  WorkQueue& worker;
};

/// All ways in which programs start by themselves on one system: where they are listed, and how each of them
/// is controlled.
class StartupWays {
 public:
  virtual ~StartupWays() = default;

  /// Sources in the order in which their items are merged.
  virtual std::vector<StartupSource*> sources() = 0;
  virtual const StartupControls& controls() const = 0;
};

/// The ways of `system`; nothing is read before a scan.
std::unique_ptr<StartupWays> startupWaysOf(HostSystem system, const StartupWayNeeds& needs);

}  // namespace vorli
