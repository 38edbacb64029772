#pragma once

#include "base/OnceReply.h"
#include "daemon/ExitCode.h"

#include <optional>
#include <string_view>

namespace vorli::daemon {

/// One kind of local DNS cache that the system may be running. Main thread; no call blocks.
class DNSCache {
 public:
  struct Outcome {
    enum class State { absent, flushed, failed };

    State state = State::absent;
    /// Of a failed one.
    SystemError error{};
  };

  virtual ~DNSCache() = default;

  virtual std::string_view name() const = 0;
  /// Empties the cache if it runs, and never starts it. Gives up after `seconds`. Answered on the main
  /// thread.
  virtual void flush(double seconds, OnceReply<Outcome> reply) = 0;
};

}  // namespace vorli::daemon
