#pragma once

#include "insights/ApplicationPaths.h"
#include "insights/ProcessSnapshot.h"
#include "insights/SystemProcessNames.h"
#include "ports/Workspace.h"
#include "sampling/RingState.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorli {

inline constexpr std::string_view culpritSentenceEnd = " using the most right now.";

/// "a", "a and b", or "a, b, and c".
std::string joinedAsList(const std::vector<std::string>& items);

/// Turns the largest processes into the names of the applications that they belong to, as a person would say
/// them. Main thread.
class CulpritFormatter {
 public:
  /// Who uses the most memory.
  struct CulpritData {
    std::vector<std::string> names;  // one or two, biggest first
    std::string verb;                // "is" for one name, else "are"
    std::string markdown;            // the whole sentence

    bool operator==(const CulpritData&) const = default;
  };

  CulpritFormatter(ports::Workspace& workspace, ApplicationPaths paths,
                   const SystemProcessNames& systemProcesses = SystemProcessNames::ofThisSystem())
      : workspace_(workspace), paths_(std::move(paths)), systemProcesses_(systemProcesses) {}

  /// Empty in the healthy state, and when no process has a name that may be told.
  std::optional<CulpritData> culpritData(const std::vector<ProcessSnapshot>& processes,
                                         RingState state) const;

  /// The name of the application that the process belongs to; empty when it is the system's, or has none.
  std::optional<std::string> applicationName(const ProcessSnapshot& process) const;

 private:
  std::vector<std::string> rankedNames(const std::vector<ProcessSnapshot>& processes) const;
  std::optional<std::string> nameInPath(std::string_view executablePath) const;
  std::optional<std::string> runningName(std::string_view bundleIdentifier) const;

  ports::Workspace& workspace_;
  const ApplicationPaths paths_;
  const SystemProcessNames& systemProcesses_;
};

}  // namespace vorli
