#pragma once

#include "base/Scheduler.h"
#include "daemon/DNSCache.h"
#include "daemon/Workers.h"

#include <string_view>

namespace vorli::machost {

/// A DNS cache of the system, emptied on a worker.
class WorkerDNSCache final : public daemon::DNSCache {
 public:
  /// Runs on a worker's thread; returns within about `seconds`.
  using Flush = Outcome (*)(double seconds);

  WorkerDNSCache(Scheduler& scheduler, daemon::Workers& workers, std::string_view name, Flush flush)
      : scheduler_(scheduler), workers_(workers), name_(name), flush_(flush) {}

  std::string_view name() const override { return name_; }
  void flush(double seconds, OnceReply<Outcome> reply) override;

 private:
  Scheduler& scheduler_;
  daemon::Workers& workers_;
  const std::string_view name_;
  const Flush flush_;
};

/// Empties the cache of the directory service with the system's tool.
daemon::DNSCache::Outcome flushDirectoryService(double seconds);

/// Makes the multicast DNS responder, which also resolves all other names, empty its cache. Absent when it
/// does not run.
daemon::DNSCache::Outcome flushResponder(double seconds);

}  // namespace vorli::machost
