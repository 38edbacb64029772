#pragma once

#include "ports/ProcessUsage.h"
#include "ports/Workspace.h"
#include "startup/RawCandidate.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vorli {

using StatsByIdentifier = std::map<std::string, ProcessStats, std::less<>>;

/// Returns the use of each running application, with all its instances added up, and of each service.
/// Processes that belong to neither are ignored. Without a process list the result has no applications.
StatsByIdentifier statsByIdentifier(const std::vector<ports::RunningApplication>& applications,
                                    const std::optional<std::vector<ports::ProcessUse>>& processes,
                                    const std::vector<ports::ServiceUse>& services);

}  // namespace vorli
