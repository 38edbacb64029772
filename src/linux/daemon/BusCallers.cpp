#include "linux/daemon/BusCallers.h"

#include "linux/bus/BusDriver.h"
#include "linux/bus/Library.h"
#include "linux/daemon/HeldCaller.h"
#include "linux/daemon/SharedReply.h"
#include "posix/FileDescriptor.h"

#include <fcntl.h>
#include <map>

namespace vorli::linuxhost {

namespace {
constexpr std::chrono::seconds busLimit(2);

using Credentials = std::map<std::string, sdbus::Variant>;

// Newer buses provide a handle of the process that connected; older ones know only its number.
std::shared_ptr<daemon::CallerProcess> processOfCredentials(const Credentials& credentials,
                                                            daemon::UserId user) {
  const auto number = credentials.find("ProcessID");
  if (number == credentials.end()) return nullptr;
  const auto pid = static_cast<std::int32_t>(number->second.get<std::uint32_t>());
  posix::FileDescriptor handle;
  if (const auto given = credentials.find("ProcessFD"); given != credentials.end()) {
    handle = posix::FileDescriptor(::fcntl(given->second.get<sdbus::UnixFd>().get(), F_DUPFD_CLOEXEC, 0));
    if (!handle) return nullptr;
  }
  return holdCaller(pid, std::move(handle), user);
}
}  // namespace

BusCallers::BusCallers(sdbus::IConnection& connection)
    : bus_(bus::proxy(connection, bus::driver::service, bus::driver::path)) {}

BusCallers::~BusCallers() = default;

void BusCallers::userOf(const std::string& caller, OnceReply<std::optional<daemon::UserId>> reply) {
  const SharedReply answer(std::move(reply));
  try {
    bus_->callMethodAsync("GetConnectionUnixUser")
        .onInterface(bus::driver::interface)
        .withTimeout(busLimit)
        .withArguments(caller)
        .uponReplyInvoke([answer](bus::Failure error, const std::uint32_t& user) {
          answer(error ? std::nullopt : std::optional(user));
        });
  } catch (const sdbus::Error&) {
    answer(std::nullopt);
  }
}

void BusCallers::processOf(const std::string& caller, daemon::UserId user,
                           OnceReply<std::shared_ptr<daemon::CallerProcess>> reply) {
  const SharedReply answer(std::move(reply));
  try {
    bus_->callMethodAsync("GetConnectionCredentials")
        .onInterface(bus::driver::interface)
        .withTimeout(busLimit)
        .withArguments(caller)
        .uponReplyInvoke([answer, user](bus::Failure error, const Credentials& credentials) {
          try {
            answer(error ? nullptr : processOfCredentials(credentials, user));
          } catch (const sdbus::Error&) {  // a value has an unexpected type
            answer(nullptr);
          }
        });
  } catch (const sdbus::Error&) {
    answer(nullptr);
  }
}

}  // namespace vorli::linuxhost
