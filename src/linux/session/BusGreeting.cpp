#include "linux/session/BusGreeting.h"

#include "formats/BusAddress.h"
#include "posix/FileDescriptor.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

struct LocalSocket {
  sockaddr_un address{};
  socklen_t length = 0;
};

std::optional<LocalSocket> localSocket(std::string_view busAddress) {
  const auto address = formats::parseBusAddress(busAddress);
  if (!address) return std::nullopt;
  const std::string name = address->isAbstract ? '\0' + address->socket : address->socket;
  LocalSocket place;
  if (name.size() >= sizeof place.address.sun_path) return std::nullopt;
  place.address.sun_family = AF_UNIX;
  std::memcpy(place.address.sun_path, name.data(), name.size());
  const std::size_t end = address->isAbstract ? 0 : 1;  // a path ends with a NUL
  place.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() + end);
  return place;
}

// First message of the bus's protocol: a NUL, then our user id, whose decimal digits are each written as hex.
std::string opening() {
  std::string text("\0AUTH EXTERNAL ", 15);
  for (const char digit : std::to_string(getuid())) {
    text += '3';
    text += digit;
  }
  return text + "\r\n";
}

bool ranOutOfTime(ssize_t result) {
  return result < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINPROGRESS);
}

}  // namespace

std::string sessionBusAddress() {
  if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address && *address) return address;
  const char* folder = std::getenv("XDG_RUNTIME_DIR");
  return folder && *folder == '/' ? "unix:path=" + std::string(folder) + "/bus" : std::string();
}

std::string systemBusAddress() {
  const char* const address = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
  return address && *address ? address : "unix:path=/var/run/dbus/system_bus_socket";
}

bool greetsBack(std::string_view busAddress, double limitSeconds) {
  const auto place = localSocket(busAddress);
  if (!place) return true;
  const posix::FileDescriptor file(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!file) return true;
  timeval limit{};
  limit.tv_sec = static_cast<time_t>(limitSeconds);
  limit.tv_usec = static_cast<suseconds_t>((limitSeconds - static_cast<double>(limit.tv_sec)) * 1e6);
  for (const int direction : {SO_SNDTIMEO, SO_RCVTIMEO}) {
    if (setsockopt(file.get(), SOL_SOCKET, direction, &limit, sizeof limit) != 0) return true;
  }
  const auto* address = reinterpret_cast<const sockaddr*>(&place->address);
  if (const int result = connect(file.get(), address, place->length); result != 0)
    return !ranOutOfTime(result);
  const auto text = opening();
  if (const auto sent = send(file.get(), text.data(), text.size(), MSG_NOSIGNAL); sent < 0) {
    return !ranOutOfTime(sent);
  }
  std::array<char, 128> answer;
  return !ranOutOfTime(recv(file.get(), answer.data(), answer.size(), 0));
}

}  // namespace vorli::linuxhost
