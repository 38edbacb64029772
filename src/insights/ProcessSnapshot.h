#pragma once

#include "base/SharedText.h"
#include "ports/Workspace.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vorli {

/// One process in one pass; all process insights work on these rows.
struct ProcessSnapshot {
  std::int32_t id = 0;
  std::int32_t parentPID = 0;
  std::string name;         // never empty
  std::string displayName;  // the application's name, else the short name, which can be empty
  std::optional<SharedText> executablePath;
  std::optional<SharedText> bundleIdentifier;
  std::uint64_t residentBytes = 0;
  double cpuFraction = 0.0;  // in cores: 1.0 is one core fully used
  double uptime = 0.0;       // seconds, never negative
  std::optional<ports::ActivationPolicy> activationPolicy;
  std::optional<ports::ApplicationIcon> appIcon;
};

}  // namespace vorli
