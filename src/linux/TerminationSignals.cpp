#include "linux/TerminationSignals.h"

#include <QSocketNotifier>
#include <csignal>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

constexpr int handledSignals[] = {SIGTERM, SIGINT, SIGHUP};

int wakeDescriptor = -1;

void wake(int) {
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = write(wakeDescriptor, &one, sizeof one);
}

void handleWith(void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  for (const int signal : handledSignals) sigaction(signal, &action, nullptr);
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
  handleWith(wake);
}

TerminationSignals::~TerminationSignals() {
  handleWith(SIG_DFL);
  notifier_.reset();
  if (wakeDescriptor >= 0) close(wakeDescriptor);
  wakeDescriptor = -1;
}

}  // namespace vorli::linuxhost
