#pragma once

#include "base/Scheduler.h"
#include "contract/HelperProtocol.h"
#include "daemon/MemoryControl.h"

namespace vorli::daemon {

/// One purge of the system's caches, from the first reading to the report.
class MemoryPurge {
 public:
  struct Timing {
    static constexpr double syncSeconds = 3.0;
    /// Compaction takes up to another second, so it is skipped if the purge has already taken this long.
    static constexpr double latestCompactionSeconds = 1.8;
  };
  /// Below this size, cached dentries and inodes are worth more than the memory they use.
  static constexpr std::uint64_t leastSlabBytes = 256ull << 20;

  MemoryPurge(MemoryControl& control, const Scheduler& clock) : control_(control), clock_(clock) {}

  /// Blocks for some seconds; call on a worker. The reply's code is the errno of a cache that could not be
  /// dropped.
  HelperReply run();

 private:
  MemoryControl& control_;
  const Scheduler& clock_;
};

}  // namespace vorli::daemon
