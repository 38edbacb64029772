#include "linux/daemon/BusLink.h"

#include "helper/HelperProtocol.h"
#include "linux/daemon/BusNames.h"
#include "linux/daemon/FileDescriptor.h"
#include "linux/daemon/SharedReply.h"

#include <algorithm>
#include <cstddef>
#include <sdbus-c++/sdbus-c++.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <utility>

namespace vorli::linuxhost {

namespace {
constexpr std::string_view stopping = "STOPPING=1";
}

BusLink::BusLink(sdbus::IConnection& connection, BusLoopScheduler& loop, std::string notifySocket)
    : connection_(connection),
      loop_(loop),
      notifySocket_(std::move(notifySocket)),
      bus_(sdbus::createProxy(connection, bus::service, bus::path)) {}

BusLink::~BusLink() = default;

void BusLink::announceStopping() {
  sockaddr_un address{};
  if (notifySocket_.empty() || notifySocket_.size() >= sizeof address.sun_path) return;
  address.sun_family = AF_UNIX;
  std::ranges::copy(notifySocket_, address.sun_path);
  if (notifySocket_.front() == '@') address.sun_path[0] = '\0';
  const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + notifySocket_.size());
  const FileDescriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  ::sendto(socket.get(), stopping.data(), stopping.size(), MSG_DONTWAIT | MSG_NOSIGNAL,
           reinterpret_cast<const sockaddr*>(&address), size);
}

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
