#include "daemon/SparingDNSCache.h"

#include <cerrno>
#include <utility>

namespace vorli::daemon {

// A flush whose caller has given up may still be waiting for a worker. Further ones behind it would all reach
// the server in the same moment.
void SparingDNSCache::flush(double seconds, OnceReply<Outcome> reply) {
  const auto& [isRunning, flushedAt] = *state_;
  if (isRunning)
    return std::move(reply)(Outcome{Outcome::State::failed, {EBUSY, "the last flush is still under way"}});
  if (flushedAt && clock_.now() - *flushedAt < freshSeconds)
    return std::move(reply)(Outcome{Outcome::State::flushed, {}});

  state_->isRunning = true;
  cache_.flush(seconds, OnceReply<Outcome>([&clock = clock_, state = state_,
                                            reply = std::move(reply)](Outcome outcome) mutable {
                 state->isRunning = false;
                 if (outcome.state == Outcome::State::flushed) state->flushedAt = clock.now();
                 std::move(reply)(std::move(outcome));
               }));
}

}  // namespace vorli::daemon
