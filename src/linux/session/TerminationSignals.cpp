#include "linux/session/TerminationSignals.h"

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace vorli::linuxhost {

namespace {

constexpr std::array handledSignals{SIGTERM, SIGINT, SIGHUP};

int wakeDescriptor = -1;
std::array<struct sigaction, handledSignals.size()> actionsBefore;

void wake(int) {
  const int interrupted = errno;
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = write(wakeDescriptor, &one, sizeof one);
  errno = interrupted;
}

// Signals that were ignored at start stay ignored: nohup relies on this to let a program outlive its
// terminal.
void handleAll() {
  struct sigaction action {};
  action.sa_handler = wake;
  action.sa_flags = SA_RESTART;
  for (std::size_t i = 0; i < handledSignals.size(); ++i) {
    sigaction(handledSignals[i], nullptr, &actionsBefore[i]);
    if (actionsBefore[i].sa_handler != SIG_IGN) sigaction(handledSignals[i], &action, nullptr);
  }
}

void restoreAll() {
  for (std::size_t i = 0; i < handledSignals.size(); ++i) {
    sigaction(handledSignals[i], &actionsBefore[i], nullptr);
  }
}

}  // namespace

TerminationSignals::TerminationSignals(std::function<void()> terminate) {
  wakeDescriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (wakeDescriptor < 0) return;
  notifier_ = std::make_unique<QSocketNotifier>(wakeDescriptor, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [terminate = std::move(terminate)] {
    std::uint64_t count = 0;
    if (read(wakeDescriptor, &count, sizeof count) == sizeof count) terminate();
  });
  handleAll();
}

TerminationSignals::~TerminationSignals() {
  if (wakeDescriptor < 0) return;
  restoreAll();
  notifier_.reset();
  close(std::exchange(wakeDescriptor, -1));
}

}  // namespace vorli::linuxhost
