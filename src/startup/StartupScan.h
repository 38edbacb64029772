#pragma once

#include "base/Date.h"
#include "ports/InstalledApplications.h"
#include "ports/ProcessUsage.h"
#include "ports/StartupFiles.h"
#include "ports/TextOrder.h"
#include "ports/Workspace.h"
#include "startup/CandidateGathering.h"
#include "startup/StartupItem.h"
#include "startup/StartupSource.h"

#include <vector>

namespace vorli {

/// Dependencies of a scan. Used on a worker, by one scan at a time.
struct ScanPorts {
  ports::StartupFiles& files;
  ports::InstalledApplications& applications;
  ports::ProcessUsage& processes;
  const ports::TextOrder& textOrder;
};

/// The scan of all startup items, in two halves. Called on a worker.
class StartupScan {
 public:
  /// The sources are merged in this order.
  StartupScan(const ScanPorts& ports, std::vector<StartupSource*> sources);

  /// Returns after how many seconds the scan should begin, so that it sees what processes use now; 0 for at
  /// once.
  double prepare() const;

  GatheredCandidates gather() const;

  /// Returns the finished items, sorted. `running` lists the applications that are running now.
  std::vector<StartupItem> classify(const GatheredCandidates& gathered,
                                    const std::vector<ports::RunningApplication>& running,
                                    Date lastVisit) const;

 private:
  const ScanPorts ports_;
  const std::vector<StartupSource*> sources_;
};

/// Sorts by footprint, heaviest first; then by cost, where one percent of a core counts as 10 MiB; then
/// running items before others; then by name.
void sortItems(std::vector<StartupItem>& items, const ports::TextOrder& textOrder);

}  // namespace vorli
