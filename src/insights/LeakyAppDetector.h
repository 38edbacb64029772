#pragma once

#include "base/SharedText.h"
#include "insights/ProcessSnapshot.h"
#include "ports/Workspace.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vorli {

/// An application that has run for a long time and uses a lot of memory.
struct LeakyApp {
  std::int32_t id = 0;  // the process identifier
  std::int32_t pid = 0;
  std::string displayName;
  std::optional<SharedText> bundleIdentifier = {};
  std::optional<SharedText> bundleURL = {};
  std::uint64_t residentBytes = 0;
  double uptime = 0.0;  // seconds

  bool operator==(const LeakyApp&) const = default;
};

/// Picks the regular applications that use at least 4 GiB and have run for at least 6 hours. Stateless: looks
/// at one sample only. Main thread.
class LeakyAppDetector {
 public:
  explicit LeakyAppDetector(ports::Workspace& workspace) : workspace_(workspace) {}

  /// Largest first.
  std::vector<LeakyApp> detect(const std::vector<ProcessSnapshot>& processes) const;

 private:
  ports::Workspace& workspace_;
};

}  // namespace vorli
