#include "linux/daemon/SocketDNSCache.h"

#include "daemon/SystemError.h"

#include <cstring>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

using State = daemon::DNSCache::Outcome::State;

daemon::DNSCache::Outcome failure(int code) {
  // An expired receive limit is reported as EAGAIN.
  return {State::failed, daemon::systemError(code == EAGAIN ? ETIMEDOUT : code)};
}

timeval limitOf(double seconds) {
  const auto whole = static_cast<time_t>(seconds);
  return {whole, static_cast<suseconds_t>((seconds - static_cast<double>(whole)) * 1e6)};
}

}  // namespace

// Version 2, request 10 "invalidate", key of 6 bytes, in the machine's own byte order; the answer is a 0.
static_assert(std::endian::native == std::endian::little, "the request below is written little endian");
const SocketDNSCache::Dialect SocketDNSCache::nscd{
    "nscd", "/run/nscd/socket", {"\x02\0\0\0\x0a\0\0\0\x06\0\0\0hosts\0", 18}, {"\0\0\0\0", 4}};
const SocketDNSCache::Dialect SocketDNSCache::unbound{"unbound", "/run/unbound.ctl", "UBCT1 flush_zone .\n",
                                                      "ok"};

daemon::DNSCache::Outcome SocketDNSCache::flushNow(double seconds) {
  const posix::FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const auto limit = limitOf(seconds);
  ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);

  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, dialect_.socketPath, sizeof address.sun_path - 1);
  if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    const bool nobodyListens = errno == ENOENT || errno == ECONNREFUSED;
    return nobodyListens ? Outcome{} : failure(errno);
  }
  const auto& request = dialect_.request;
  if (::send(socket.get(), request.data(), request.size(), MSG_NOSIGNAL) != std::ssize(request))
    return failure(errno);

  char answer[256];
  const auto size = ::recv(socket.get(), answer, sizeof answer, 0);
  if (size < 0) return failure(errno);
  if (std::string_view(answer, static_cast<std::size_t>(size)).starts_with(dialect_.success))
    return {State::flushed, {}};
  return failure(EPROTO);
}

}  // namespace vorli::linuxhost
