#pragma once

#include "base/HostSystem.h"
#include "insights/ApplicationPaths.h"
#include "insights/ProcessSnapshot.h"
#include "insights/SystemProcessNames.h"
#include "ports/Workspace.h"
#include "sampling/RingState.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorli {

inline constexpr std::string_view culpritSentenceEnd = " using the most right now.";

/// "a", "a and b", or "a, b, and c".
std::string joinedAsList(const std::vector<std::string>& items);

/// Maps the largest processes to the display names of their applications. Main thread.
class CulpritFormatter {
 public:
  /// The applications that use the most memory.
  struct CulpritData {
    std::vector<std::string> names;  // one or two, biggest first
    std::string verb;                // "is" for one name, else "are"
    std::string markdown;            // the whole sentence

    bool operator==(const CulpritData&) const = default;
  };

  CulpritFormatter(ports::Workspace& workspace, ApplicationPaths paths,
                   const SystemProcessNames& systemProcesses = ofThisSystem<SystemProcessNames>())
      : workspace_(workspace), paths_(std::move(paths)), systemProcesses_(systemProcesses) {}

  /// Empty in the healthy state, and when no process has a name that may be shown.
  std::optional<CulpritData> culpritData(const std::vector<ProcessSnapshot>& processes,
                                         RingState state) const;

  /// The name of the application that the process belongs to; empty when the process belongs to the system or
  /// has no application.
  std::optional<std::string> applicationName(const ProcessSnapshot& process) const;

 private:
  /// A name, or why there is none.
  using Naming = std::expected<std::string, std::string_view>;

  std::vector<std::string> rankedNames(const std::vector<ProcessSnapshot>& processes) const;
  [[nodiscard]] Naming resolve(const ProcessSnapshot& process) const;
  [[nodiscard]] Naming nameOfBundle(const ProcessSnapshot& process) const;
  [[nodiscard]] Naming nameByRecords(const ProcessSnapshot& process) const;
  [[nodiscard]] Naming nameByPath(std::string_view executablePath) const;
  [[nodiscard]] Naming runningName(std::string_view bundleIdentifier) const;
  [[nodiscard]] Naming shownName(const ports::RunningApplication* application) const;

  ports::Workspace& workspace_;
  const ApplicationPaths paths_;
  const SystemProcessNames& systemProcesses_;
};

}  // namespace vorli
