#pragma once

#include "base/SharedText.h"
#include "insights/ApplicationPaths.h"
#include "insights/ProcessSnapshot.h"
#include "ports/Workspace.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli {

/// A process that an application left behind when it ended.
struct OrphanHelper {
  std::int32_t id = 0;  // the process identifier
  std::int32_t pid = 0;
  std::string name;
  SharedText parentAppName;
  std::optional<SharedText> parentBundleID = {};
  SharedText executablePath;
  std::uint64_t residentBytes = 0;

  bool operator==(const OrphanHelper&) const = default;
};

/// Finds orphaned processes whose program belongs to an installed application that is not running. Stateless:
/// looks at one sample only. Main thread.
class OrphanHelperDetector {
 public:
  OrphanHelperDetector(ports::Workspace& workspace, ApplicationPaths paths)
      : workspace_(workspace), paths_(std::move(paths)) {}

  /// Largest first.
  std::vector<OrphanHelper> detect(const std::vector<ProcessSnapshot>& processes) const;

 private:
  std::vector<std::int32_t> findAdopters(const std::vector<ProcessSnapshot>& processes) const;
  /// The application that left behind the program at this path.
  std::optional<ports::InstalledApplication> endedApplication(std::string_view executablePath) const;
  std::optional<ports::InstalledApplication> enclosingApplication(std::string_view executablePath) const;
  bool isApplicationItself(std::string_view executablePath) const;

  ports::Workspace& workspace_;
  const ApplicationPaths paths_;
};

}  // namespace vorli
