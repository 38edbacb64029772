#pragma once

#include "startup/RawCandidate.h"
#include "startup/StartupSource.h"

#include <map>
#include <optional>
#include <span>
#include <string>

namespace vorli {

struct GatheredCandidates {
  std::map<std::string, RawCandidate> byIdentifier;
  /// Number of hidden candidates; an item that two sources list counts twice.
  int hidden = 0;
};

/// Merges two candidates with the same identifier: `existing` comes from the earlier source, and its texts
/// win. The result is enabled when both are; every other flag is set when it is set in either.
RawCandidate mergeCandidate(const std::optional<RawCandidate>& existing, const RawCandidate& incoming);

/// Merges the candidates of each source in turn. Reads the last source first, so that the store of background
/// items is read before the launch folders. Identifiers are compared byte by byte.
GatheredCandidates gatherCandidates(std::span<StartupSource* const> sources);

}  // namespace vorli
