#include "linux/daemon/BusDNSCache.h"

#include "linux/bus/BusDriver.h"
#include "linux/bus/Library.h"

#include <cerrno>
#include <chrono>

namespace vorli::linuxhost {

namespace {

using State = daemon::DNSCache::Outcome::State;

std::chrono::microseconds microseconds(double seconds) {
  return std::chrono::microseconds(static_cast<std::int64_t>(seconds * 1e6));
}

daemon::DNSCache::Outcome failure(const sdbus::Error& error) {
  if (error.getName() == "org.freedesktop.DBus.Error.NoReply" ||
      error.getName() == "org.freedesktop.DBus.Error.Timeout")
    return {State::failed, {ETIMEDOUT, "no answer"}};
  return {State::failed, {EIO, error.getName()}};
}

}  // namespace

const BusDNSCache::Method BusDNSCache::resolved{"systemd-resolved", "org.freedesktop.resolve1",
                                                "/org/freedesktop/resolve1",
                                                "org.freedesktop.resolve1.Manager", "FlushCaches"};
const BusDNSCache::Method BusDNSCache::networkManagerDnsmasq{
    "NetworkManager's dnsmasq", "org.freedesktop.NetworkManager.dnsmasq", "/uk/org/thekelleys/dnsmasq",
    "org.freedesktop.NetworkManager.dnsmasq", "ClearCache"};
const BusDNSCache::Method BusDNSCache::dnsmasq{"dnsmasq", "uk.org.thekelleys.dnsmasq",
                                               "/uk/org/thekelleys/dnsmasq", "uk.org.thekelleys.dnsmasq",
                                               "ClearCache"};

BusDNSCache::BusDNSCache(sdbus::IConnection& connection, const Method& method)
    : connection_(connection),
      method_(method),
      bus_(bus::proxy(connection, bus::driver::service, bus::driver::path)) {}

BusDNSCache::~BusDNSCache() = default;

// Calls the owner's unique name. A call to the service's name would start a service that is not running, and
// hang for 25 seconds when the service cannot start.
void BusDNSCache::flush(double seconds, OnceReply<Outcome> reply) {
  auto held = std::make_shared<OnceReply<Outcome>>(std::move(reply));
  try {
    bus_->callMethodAsync("GetNameOwner")
        .onInterface(bus::driver::interface)
        .withTimeout(microseconds(seconds))
        .withArguments(std::string(method_.service))
        .uponReplyInvoke([this, seconds, held](bus::Failure error, const std::string& owner) {
          if (error) return std::move(*held)(Outcome{});
          call(owner, seconds, std::move(*held));
        });
  } catch (const sdbus::Error& error) {
    std::move (*held)(failure(error));
  }
}

void BusDNSCache::call(const std::string& owner, double seconds, OnceReply<Outcome> reply) {
  auto held = std::make_shared<OnceReply<Outcome>>(std::move(reply));
  try {
    owner_ = bus::proxy(connection_, owner, method_.path);
    owner_->callMethodAsync(method_.name)
        .onInterface(method_.interface)
        .withTimeout(microseconds(seconds))
        .uponReplyInvoke([held](bus::Failure error) {
          std::move (*held)(error ? failure(*error) : Outcome{State::flushed, {}});
        });
  } catch (const sdbus::Error& error) {
    std::move (*held)(failure(error));
  }
}

}  // namespace vorli::linuxhost
