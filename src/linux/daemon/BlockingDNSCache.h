#pragma once

#include "base/Scheduler.h"
#include "daemon/DNSCache.h"
#include "daemon/Workers.h"

namespace vorli::linuxhost {

/// A DNS cache that is emptied by blocking calls, which run on a worker.
class BlockingDNSCache : public daemon::DNSCache {
 public:
  BlockingDNSCache(Scheduler& scheduler, daemon::Workers& workers)
      : scheduler_(scheduler), workers_(workers) {}

  void flush(double seconds, OnceReply<Outcome> reply) final;

 protected:
  /// Runs on a worker's thread; returns within about `seconds`.
  virtual Outcome flushNow(double seconds) = 0;

 private:
  Scheduler& scheduler_;
  daemon::Workers& workers_;
};

}  // namespace vorli::linuxhost
