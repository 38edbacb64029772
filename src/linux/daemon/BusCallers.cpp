#include "linux/daemon/BusCallers.h"

#include "linux/daemon/BusNames.h"
#include "linux/daemon/SharedReply.h"

#include <sdbus-c++/sdbus-c++.h>

namespace vorli::linuxhost {

namespace {
constexpr std::chrono::seconds answerLimit(2);
}

BusCallers::BusCallers(sdbus::IConnection& connection)
    : bus_(sdbus::createProxy(connection, bus::service, bus::path)) {}

BusCallers::~BusCallers() = default;

void BusCallers::userOf(const std::string& caller, OnceReply<std::optional<daemon::UserId>> reply) {
  const SharedReply answer(std::move(reply));
  try {
    bus_->callMethodAsync("GetConnectionUnixUser")
        .onInterface(bus::interface)
        .withTimeout(answerLimit)
        .withArguments(caller)
        .uponReplyInvoke([answer](const sdbus::Error* error, const std::uint32_t& user) {
          answer(error ? std::nullopt : std::optional(user));
        });
  } catch (const sdbus::Error&) {
    answer(std::nullopt);
  }
}

}  // namespace vorli::linuxhost
