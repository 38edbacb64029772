#include "linux/daemon/BusLink.h"

#include "contract/HelperProtocol.h"
#include "linux/bus/BusDriver.h"
#include "linux/bus/Library.h"
#include "linux/daemon/SharedReply.h"

#include <utility>

namespace vorli::linuxhost {

namespace {

// Values of the bus's protocol.
constexpr std::uint32_t doNotQueue = 4;
constexpr std::uint32_t primaryOwner = 1;

}  // namespace

BusLink::BusLink(sdbus::IConnection& connection, BusLoopScheduler& loop)
    : loop_(loop), bus_(bus::proxy(connection, bus::driver::service, bus::driver::path)) {}

BusLink::~BusLink() = default;

void BusLink::requestName(OnceReply<bool> reply) {
  const SharedReply answer(std::move(reply));
  try {
    bus_->callMethodAsync("RequestName")
        .onInterface(bus::driver::interface)
        .withArguments(std::string(helper::serviceName), doNotQueue)
        .uponReplyInvoke([answer](bus::Failure error, const std::uint32_t& result) {
          answer(!error && result == primaryOwner);
        });
  } catch (const sdbus::Error&) {
    answer(false);
  }
}

void BusLink::releaseName() {
  try {
    bus_->callMethodAsync("ReleaseName")
        .onInterface(bus::driver::interface)
        .withArguments(std::string(helper::serviceName))
        .uponReplyInvoke([](bus::Failure, const std::uint32_t&) {});
  } catch (const sdbus::Error&) {
    return;  // the bus is gone, and the name with it
  }
}

void BusLink::barrier(OnceReply<bool> reply) {
  const SharedReply answer(std::move(reply));
  try {
    bus_->callMethodAsync("GetId")
        .onInterface(bus::driver::interface)
        .uponReplyInvoke([answer](bus::Failure, const std::string&) { answer(true); });
  } catch (const sdbus::Error&) {
    answer(true);
  }
}

}  // namespace vorli::linuxhost
