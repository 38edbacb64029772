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

/// Gives the daemon's name on the bus back, in the order that loses no call.
class BusLink final : public daemon::Lifecycle::Link {
 public:
  BusLink(sdbus::IConnection& connection, BusLoopScheduler& loop);
  ~BusLink() override;

  void releaseName() override;
  void barrier(OnceReply<bool> reply) override;
  void stop() override { loop_.stop(); }

 private:
  sdbus::IConnection& connection_;
  BusLoopScheduler& loop_;
  std::unique_ptr<sdbus::IProxy> bus_;
};

}  // namespace vorli::linuxhost
