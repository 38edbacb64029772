#include "linux/applications/ProcessExit.h"

#include <QSocketNotifier>
#include <cerrno>
#include <csignal>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace vorli::linuxhost {

ProcessExit::ProcessExit(std::int32_t pid, std::function<void()> ended)
    : descriptor_(static_cast<int>(syscall(SYS_pidfd_open, pid, 0))) {
  if (!isHeld()) return;
  notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated,
                   [notifier = notifier_.get(), ended = std::move(ended)] {
                     notifier->setEnabled(false);
                     const auto tell = ended;  // the call may destroy this object
                     tell();
                   });
}

ProcessExit::~ProcessExit() {
  if (notifier_) {
    notifier_->setEnabled(false);  // the descriptor's number may be reused before the notifier is destroyed
    notifier_.release()->deleteLater();  // it may be the one whose signal is being delivered
  }
  if (isHeld()) close(descriptor_);
}

ports::QuitAnswer ProcessExit::requestTermination() const {
  return send(SIGTERM);
}

ports::QuitAnswer ProcessExit::answerToTermination() const {
  constexpr int permissionCheck = 0;
  return send(permissionCheck);
}

// Fails for a process that is gone, and for one that belongs to another user.
ports::QuitAnswer ProcessExit::send(int signal) const {
  if (!isHeld()) return ports::QuitAnswer::gone;
  if (syscall(SYS_pidfd_send_signal, descriptor_, signal, nullptr, 0) == 0) return ports::QuitAnswer::asked;
  return errno == ESRCH ? ports::QuitAnswer::gone : ports::QuitAnswer::cannotBeAsked;
}

}  // namespace vorli::linuxhost
