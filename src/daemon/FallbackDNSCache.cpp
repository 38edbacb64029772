#include "daemon/FallbackDNSCache.h"

#include <utility>

namespace vorli::daemon {

void FallbackDNSCache::flush(double seconds, OnceReply<Outcome> reply) {
  first_.flush(seconds, OnceReply<Outcome>([this, seconds, reply = std::move(reply)](Outcome first) mutable {
                 if (first.state == Outcome::State::flushed) return std::move(reply)(std::move(first));
                 second_.flush(seconds,
                               OnceReply<Outcome>([first = std::move(first),
                                                   reply = std::move(reply)](Outcome second) mutable {
                                 // The first one's error is more useful than an absent second one.
                                 const bool found = second.state != Outcome::State::absent;
                                 std::move(reply)(found ? std::move(second) : std::move(first));
                               }));
               }));
}

}  // namespace vorli::daemon
