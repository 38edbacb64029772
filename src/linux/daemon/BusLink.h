#pragma once

#include "daemon/Lifecycle.h"
#include "linux/daemon/BusLoopScheduler.h"

#include <memory>
#include <string>

namespace sdbus {
class IConnection;
class IProxy;
}  // namespace sdbus

namespace vorli::linuxhost {

/// Acquires and releases the daemon's name on the bus. Never waits for the bus: waiting would read everything
/// that others have sent so far into memory at once.
class BusLink final : public daemon::Lifecycle::Link {
 public:
  BusLink(sdbus::IConnection& connection, BusLoopScheduler& loop);
  ~BusLink() override;

  /// Replies false when another process owns the name or the bus cannot be asked.
  void requestName(OnceReply<bool> reply);
  void releaseName() override;
  void barrier(OnceReply<bool> reply) override;
  void stop() override { loop_.stop(); }

 private:
  BusLoopScheduler& loop_;
  std::unique_ptr<sdbus::IProxy> bus_;
};

}  // namespace vorli::linuxhost
