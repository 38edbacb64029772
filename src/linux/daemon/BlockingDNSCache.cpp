#include "linux/daemon/BlockingDNSCache.h"

#include <utility>

namespace vorli::linuxhost {

void BlockingDNSCache::flush(double seconds, OnceReply<Outcome> reply) {
  workers_.post([this, seconds, reply = std::move(reply)]() mutable {
    auto outcome = flushNow(seconds);
    scheduler_.post([reply = std::move(reply), outcome = std::move(outcome)]() mutable {
      std::move(reply)(std::move(outcome));
    });
  });
}

}  // namespace vorli::linuxhost
