#pragma once

#include "linux/daemon/BlockingDNSCache.h"
#include "posix/FileDescriptor.h"

#include <string>
#include <string_view>

namespace vorli::linuxhost {

/// A DNS cache that is emptied by one request over its control socket.
class SocketDNSCache final : public BlockingDNSCache {
 public:
  struct Dialect {
    const char* displayName;
    const char* socketPath;
    std::string_view request;
    /// Prefix of an answer that means success.
    std::string_view success;
  };
  /// The name service cache: "invalidate the table hosts".
  static const Dialect nscd;
  static const Dialect unbound;

  SocketDNSCache(Scheduler& scheduler, daemon::Workers& workers, const Dialect& dialect)
      : BlockingDNSCache(scheduler, workers), dialect_(dialect) {}

  std::string_view name() const override { return dialect_.displayName; }

 protected:
  Outcome flushNow(double seconds) override;

 private:
  const Dialect& dialect_;
};

}  // namespace vorli::linuxhost
