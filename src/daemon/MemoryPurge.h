#pragma once

#include "base/Scheduler.h"
#include "daemon/MemoryControl.h"
#include "helper/HelperProtocol.h"

namespace vorli::daemon {

/// One purge of the system's caches, from the first read to the sentence about what it did.
class MemoryPurge {
 public:
  struct Timing {
    static constexpr double syncSeconds = 3.0;
    /// Compaction takes up to a second more, so it is left out of a purge that was slow already.
    static constexpr double latestCompactionSeconds = 1.8;
  };
  /// Below this the dentries and inodes are worth more than their memory.
  static constexpr std::uint64_t leastSlabBytes = 256ull << 20;

  MemoryPurge(MemoryControl& control, const Scheduler& clock) : control_(control), clock_(clock) {}

  /// Blocks for some seconds: a worker's thread. Code: errno of a cache that could not be dropped.
  HelperReply run();

 private:
  MemoryControl& control_;
  const Scheduler& clock_;
};

}  // namespace vorli::daemon
