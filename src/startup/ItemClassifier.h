#pragma once

#include "base/Date.h"
#include "base/HostSystem.h"
#include "ports/InstalledApplications.h"
#include "ports/StartupFiles.h"
#include "startup/ApplicationResolver.h"
#include "startup/RawCandidate.h"
#include "startup/StartupItem.h"
#include "startup/StatsByIdentifier.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace vorli {

/// Running applications and services at the time of a scan, and the date at which the user last viewed the
/// list.
struct ScanSurroundings {
  StatsByIdentifier stats;
  /// Identifiers of the running applications, and of the running services that the user may stop.
  std::set<std::string, std::less<>> runningIdentifiers;
  Date lastVisit = Date::distantPast();
};

/// Returns how heavy an item is. An item that is paused or not running is light, whatever its numbers.
StartupItem::Footprint footprintOf(bool isRunning, bool isEnabled, double cpuPercent, double memoryMB);

/// Turns the candidates of one scan into list items: name and description, cost, age, and whether the program
/// still exists. Called on the scan's worker.
class ItemClassifier {
 public:
  ItemClassifier(ports::StartupFiles& files, ports::InstalledApplications& applications,
                 HostSystem system = hostSystem)
      : files_(files), resolver_(applications), system_(system) {}

  StartupItem classify(const RawCandidate& candidate, const ScanSurroundings& surroundings);

 private:
  /// Creation time of the candidate's file. Empty without a file, and while the candidate is paused.
  std::optional<Date> firstSeenAt(const RawCandidate& candidate);
  /// True when the candidate has an absolute path at which no file exists, and no application was found. A
  /// program in a folder that the user may not see is taken to exist.
  bool isLeftover(const RawCandidate& candidate, const std::optional<Resolved>& resolved);
  bool isMissing(const std::string& program);

  ports::StartupFiles& files_;
  ApplicationResolver resolver_;
  const HostSystem system_;
  std::map<std::string, bool> missing_;  // programs that were looked for
};

}  // namespace vorli
