#pragma once

#include "base/Scheduler.h"
#include "daemon/DNSCache.h"

#include <memory>
#include <optional>

namespace vorli::daemon {

/// A cache whose server needs much work for each flush, such as reloading everything: the result of a flush
/// less than five seconds ago is reused, and no flush is started while the last one is under way. Main
/// thread.
class SparingDNSCache final : public DNSCache {
 public:
  static constexpr double freshSeconds = 5.0;

  /// The cache must outlive this object.
  SparingDNSCache(const Scheduler& clock, DNSCache& cache) : clock_(clock), cache_(cache) {}

  std::string_view name() const override { return cache_.name(); }
  void flush(double seconds, OnceReply<Outcome> reply) override;

 private:
  struct State {
    bool isRunning = false;
    /// Time of the last flush.
    std::optional<double> flushedAt;
  };

  const Scheduler& clock_;
  DNSCache& cache_;
  /// Shared with a flush in progress.
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace vorli::daemon
