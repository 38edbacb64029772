#pragma once

#include "linux/startup/FileSystemCalls.h"
#include "linux/startup/InstalledApplications.h"
#include "ports/StartupPlaces.h"
#include "posix/StartupFiles.h"
#include "posix/TextOrder.h"
#include "startup/AutostartEntries.h"
#include "startup/ListedItems.h"
#include "startup/StartupScan.h"
#include "startup/StartupUnits.h"
#include "tests/fakes/ProcessUsage.h"
#include "tests/fakes/SystemStartupLists.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vorli::bench {

/// The program's scan over real files below a folder that stands in for the root of the disk. Processes and
/// the system's own lists are fakes, because they are not read from those files.
class StartupMachine {
 public:
  explicit StartupMachine(const std::string& root);

  /// All folders in which the scan looks for items.
  std::vector<std::string> folders() const;

  struct Count {
    std::size_t shown = 0;
    std::size_t hidden = 0;
  };
  Count scan();

 private:
  const ports::StartupPlaces places_;
  posix::StartupFiles files_{linuxhost::fileSystemCalls()};
  linuxhost::InstalledApplications applications_;
  fakes::ProcessUsage processes_;
  fakes::SystemStartupLists lists_;
  posix::TextOrder textOrder_;
  AutostartEntries entries_;
  StartupUnits userUnits_;
  StartupUnits systemUnits_;
  ListedItems listed_;
  StartupScan scan_;
};

}  // namespace vorli::bench
