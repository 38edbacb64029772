#include "linux/daemon/ProcessPins.h"

#include "daemon/SystemError.h"
#include "linux/daemon/ProcessFile.h"
#include "posix/FileDescriptor.h"

#include <csignal>
#include <sys/syscall.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

class PidfdProcess final : public daemon::PinnedProcess {
 public:
  PidfdProcess(posix::FileDescriptor file, std::int32_t pid) : file_(std::move(file)), pid_(pid) {}

  std::optional<std::array<daemon::UserId, 4>> users() override { return process_file::usersOf(pid_); }
  bool isThere() override { return signal(0) == 0; }
  std::expected<void, daemon::SystemError> resume() override {
    if (signal(SIGCONT) != 0) return daemon::lastError();
    return {};
  }

 private:
  long signal(int number) { return ::syscall(SYS_pidfd_send_signal, file_.get(), number, nullptr, 0); }

  posix::FileDescriptor file_;
  std::int32_t pid_;
};

}  // namespace

std::expected<std::unique_ptr<daemon::PinnedProcess>, daemon::SystemError> ProcessPins::pin(
    std::int32_t pid) {
  posix::FileDescriptor file(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
  if (!file) return daemon::lastError();
  return std::make_unique<PidfdProcess>(std::move(file), pid);
}

}  // namespace vorli::linuxhost
