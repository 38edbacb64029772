#include "linux/daemon/BusLink.h"

#include "helper/HelperProtocol.h"
#include "linux/daemon/BusNames.h"
#include "linux/daemon/SharedReply.h"

#include <sdbus-c++/sdbus-c++.h>
#include <utility>

namespace vorli::linuxhost {

BusLink::BusLink(sdbus::IConnection& connection, BusLoopScheduler& loop)
    : connection_(connection), loop_(loop), bus_(sdbus::createProxy(connection, bus::service, bus::path)) {}

BusLink::~BusLink() = default;

void BusLink::releaseName() {
  try {
    connection_.releaseName(std::string(helper::serviceName));
  } catch (const sdbus::Error&) {
    // The bus is gone, and the name with it.
  }
}

void BusLink::barrier(OnceReply<bool> reply) {
  const SharedReply answer(std::move(reply));
  try {
    bus_->callMethodAsync("GetId")
        .onInterface(bus::interface)
        .uponReplyInvoke([answer](const sdbus::Error*, const std::string&) { answer(true); });
  } catch (const sdbus::Error&) {
    answer(true);
  }
}

}  // namespace vorli::linuxhost
