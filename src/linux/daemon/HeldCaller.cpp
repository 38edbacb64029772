#include "linux/daemon/HeldCaller.h"

#include "linux/daemon/ProcessFile.h"

#include <algorithm>
#include <cstdlib>
#include <poll.h>
#include <sys/syscall.h>
#include <systemd/sd-login.h>
#include <unistd.h>
#include <utility>

namespace vorli::linuxhost {

namespace {

class HeldCaller final : public daemon::CallerProcess {
 public:
  explicit HeldCaller(posix::FileDescriptor handle) : handle_(std::move(handle)) {}

  // The handle of a process becomes readable when the process ends.
  bool isThere() override {
    pollfd file{handle_.get(), POLLIN, 0};
    return ::poll(&file, 1, 0) == 0;
  }

 private:
  posix::FileDescriptor handle_;
};

bool isUsersOwn(std::int32_t pid, daemon::UserId user) {
  const auto users = process_file::usersOf(pid);
  return users && std::ranges::all_of(*users, [user](auto one) { return one == user; });
}

// Checks the owner and the session, because polkit decides by both.
bool isInAnothersSession(std::int32_t pid, daemon::UserId user) {
  uid_t owner = user;
  if (::sd_pid_get_owner_uid(pid, &owner) >= 0 && owner != user) return true;
  char* session = nullptr;
  if (::sd_pid_get_session(pid, &session) < 0) return false;
  const bool isKnown = ::sd_session_get_uid(session, &owner) >= 0;
  std::free(session);
  return !isKnown || owner != user;
}

}  // namespace

std::shared_ptr<daemon::CallerProcess> holdCaller(std::int32_t pid, posix::FileDescriptor handle,
                                                  daemon::UserId user) {
  if (pid <= 0) return nullptr;
  if (!handle) handle = posix::FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
  if (!handle) return nullptr;
  auto process = std::make_shared<HeldCaller>(std::move(handle));
  if (!isUsersOwn(pid, user) || isInAnothersSession(pid, user)) return nullptr;
  // Checked last: a process that still exists has kept its number, so the checks above were about it.
  if (!process->isThere()) return nullptr;
  return process;
}

}  // namespace vorli::linuxhost
