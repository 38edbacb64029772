#pragma once

#include "base/Scheduler.h"
#include "base/TaskScope.h"
#include "daemon/DNSCache.h"
#include "helper/HelperProtocol.h"

#include <vector>

namespace vorli::daemon {

/// Empties every local DNS cache, one after the other, and tells what became of each. Main thread.
class DNSFlush {
 public:
  struct Timing {
    static constexpr double cacheSeconds = 1.5;
    static constexpr double totalSeconds = 4.4;
    /// With less left than this nobody is asked any more: no time at all is for a socket the same as for
    /// ever.
    static constexpr double leastSeconds = 0.05;
  };

  /// The caches outlive this object.
  DNSFlush(Scheduler& scheduler, std::vector<DNSCache*> caches)
      : scheduler_(scheduler), caches_(std::move(caches)), tasks_(scheduler) {}

  /// Code: that of the first cache that failed. None running is as good as done.
  void run(OnceReply<HelperReply> reply) { tasks_.spawn(flushAll(std::move(reply))); }

 private:
  Task<> flushAll(OnceReply<HelperReply> reply);
  Task<DNSCache::Outcome> flushOne(DNSCache* cache, double deadline);

  Scheduler& scheduler_;
  std::vector<DNSCache*> caches_;
  TaskScope tasks_;  // last: its flows use everything above
};

}  // namespace vorli::daemon
