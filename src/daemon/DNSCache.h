#pragma once

#include "base/OnceReply.h"
#include "daemon/SystemError.h"

#include <optional>
#include <string_view>

namespace vorli::daemon {

/// One kind of local DNS cache that may be running on the system. Main thread; no call blocks.
class DNSCache {
 public:
  struct Outcome {
    enum class State { absent, flushed, failed };

    State state = State::absent;
    /// Error of a failed flush.
    SystemError error{};
  };

  virtual ~DNSCache() = default;

  virtual std::string_view name() const = 0;
  /// Empties the cache if it is running, and never starts it. Gives up after `seconds`. Answers on the main
  /// thread.
  virtual void flush(double seconds, OnceReply<Outcome> reply) = 0;
};

}  // namespace vorli::daemon
