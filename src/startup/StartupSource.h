#pragma once

#include "startup/RawCandidate.h"

#include <vector>

namespace vorli {

/// One place where a system lists startup items. Called on a scan's worker.
class StartupSource {
 public:
  virtual ~StartupSource() = default;

  /// Returns the items listed now, in the source's own order. Unreadable items are left out.
  virtual std::vector<RawCandidate> candidates() = 0;

  /// True for items that belong to the system or to the program itself: they are counted but not shown.
  virtual bool hides(const RawCandidate& candidate) const;
};

}  // namespace vorli
