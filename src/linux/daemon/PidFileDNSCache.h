#pragma once

#include "linux/daemon/BlockingDNSCache.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace vorli::linuxhost {

/// A DNS server that empties its cache on SIGHUP, found by its pid file.
class PidFileDNSCache final : public BlockingDNSCache {
 public:
  struct Server {
    const char* displayName;
    /// Required command name of the process.
    const char* command;
    std::vector<const char*> pidFiles;
  };
  static const Server dnsmasq;
  static const Server unbound;

  PidFileDNSCache(Scheduler& scheduler, daemon::Workers& workers, const Server& server)
      : BlockingDNSCache(scheduler, workers), server_(server) {}

  std::string_view name() const override { return server_.displayName; }

 protected:
  Outcome flushNow(double seconds) override;

 private:
  const Server& server_;
};

}  // namespace vorli::linuxhost
