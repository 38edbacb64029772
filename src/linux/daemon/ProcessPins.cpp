#include "linux/daemon/ProcessPins.h"

#include "linux/daemon/FileDescriptor.h"
#include "linux/daemon/LastError.h"
#include "linux/daemon/ProcessFile.h"

#include <csignal>
#include <sys/syscall.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

class PidfdProcess final : public daemon::PinnedProcess {
 public:
  PidfdProcess(FileDescriptor file, std::int32_t pid) : file_(std::move(file)), pid_(pid) {}

  std::optional<std::array<daemon::UserId, 4>> users() override { return process_file::usersOf(pid_); }
  bool isThere() override { return signal(0) == 0; }
  std::expected<void, daemon::SystemError> resume() override {
    if (signal(SIGCONT) != 0) return lastError();
    return {};
  }

 private:
  long signal(int number) { return ::syscall(SYS_pidfd_send_signal, file_.get(), number, nullptr, 0); }

  FileDescriptor file_;
  std::int32_t pid_;
};

}  // namespace

std::expected<std::unique_ptr<daemon::PinnedProcess>, daemon::SystemError> ProcessPins::pin(
    std::int32_t pid) {
  FileDescriptor file(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
  if (!file) return lastError();
  return std::make_unique<PidfdProcess>(std::move(file), pid);
}

}  // namespace vorli::linuxhost
