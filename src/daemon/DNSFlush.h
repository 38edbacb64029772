#pragma once

#include "base/Scheduler.h"
#include "base/TaskScope.h"
#include "contract/HelperProtocol.h"
#include "daemon/DNSCache.h"

#include <vector>

namespace vorli::daemon {

/// Empties every local DNS cache, one after the other, and reports the result of each. Main thread.
class DNSFlush {
 public:
  struct Timing {
    static constexpr double cacheSeconds = 1.5;
    static constexpr double totalSeconds = 4.4;
    /// Caches are skipped when less time than this is left: a socket takes a timeout of zero as no limit.
    static constexpr double leastSeconds = 0.05;
  };

  /// The caches must outlive this object.
  DNSFlush(Scheduler& scheduler, std::vector<DNSCache*> caches)
      : scheduler_(scheduler), caches_(std::move(caches)), tasks_(scheduler) {}

  /// The reply's code is that of the first cache that failed. It is a success if no cache is running.
  void run(OnceReply<HelperReply> reply) { tasks_.spawn(flushAll(std::move(reply))); }

 private:
  Task<> flushAll(OnceReply<HelperReply> reply);
  Task<DNSCache::Outcome> flushOne(DNSCache* cache, double deadline);

  Scheduler& scheduler_;
  std::vector<DNSCache*> caches_;
  TaskScope tasks_;  // last: its flows use everything above
};

}  // namespace vorli::daemon
