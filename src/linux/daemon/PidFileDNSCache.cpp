#include "linux/daemon/PidFileDNSCache.h"

#include "daemon/SystemError.h"
#include "linux/daemon/ProcessFile.h"
#include "posix/FileDescriptor.h"

#include <algorithm>
#include <charconv>
#include <csignal>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace vorli::linuxhost {

namespace {

using State = daemon::DNSCache::Outcome::State;

struct PidFile {
  std::int32_t pid;
  std::uint32_t owner;
};

std::optional<PidFile> readPidFile(const char* path) {
  const posix::FileDescriptor file(::open(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  char text[32];
  const auto size = ::read(file.get(), text, sizeof text);
  if (size <= 0) return std::nullopt;
  std::int32_t pid = 0;
  const auto parsed = std::from_chars(text, text + size, pid);
  if (parsed.ec != std::errc() || pid <= 1) return std::nullopt;
  return PidFile{pid, status.st_uid};
}

// A server that owns its pid file could name any process in it, so the process must belong to the file's
// owner and have the server's name.
bool isServer(const PidFile& file, const char* command) {
  const auto users = process_file::usersOf(file.pid);
  return users && std::ranges::all_of(*users, [&](auto user) { return user == file.owner; }) &&
         process_file::commandOf(file.pid) == command;
}

}  // namespace

const PidFileDNSCache::Server PidFileDNSCache::dnsmasq{
    "dnsmasq", "dnsmasq", {"/run/dnsmasq/dnsmasq.pid", "/run/dnsmasq.pid"}};
const PidFileDNSCache::Server PidFileDNSCache::unbound{"unbound", "unbound", {"/run/unbound.pid"}};

daemon::DNSCache::Outcome PidFileDNSCache::flushNow(double) {
  for (const auto* path : server_.pidFiles) {
    const auto file = readPidFile(path);
    if (!file) continue;
    // Pins the process before checking it, so that the check and the signal apply to the same process.
    const posix::FileDescriptor process(static_cast<int>(::syscall(SYS_pidfd_open, file->pid, 0)));
    if (!process || !isServer(*file, server_.command)) continue;
    if (::syscall(SYS_pidfd_send_signal, process.get(), SIGHUP, nullptr, 0) != 0)
      return {State::failed, daemon::systemError(errno)};
    return {State::flushed, {}};
  }
  return {};
}

}  // namespace vorli::linuxhost
