#include "linux/ProcessExit.h"

#include <QSocketNotifier>
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
    notifier_->setEnabled(false);  // the descriptor's number may be another's before the notifier is gone
    notifier_.release()->deleteLater();  // it may be the one whose signal is being delivered
  }
  if (isHeld()) close(descriptor_);
}

bool ProcessExit::requestTermination() const {
  return isHeld() && syscall(SYS_pidfd_send_signal, descriptor_, SIGTERM, nullptr, 0) == 0;
}

}  // namespace vorli::linuxhost
