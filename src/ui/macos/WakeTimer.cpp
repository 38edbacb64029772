#include "ui/loop/WakeTimer.h"

#include <QtGlobal>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <sys/event.h>
#include <unistd.h>

namespace vorli::ui {
namespace {

constexpr double nanosecondsPerSecond = 1e9;
constexpr double longestWait = 4e9;  // more than a century
constexpr uintptr_t onlyTimer = 1;

// Rounds up: the timer must not be early by the clock that the moment was read from.
std::int64_t nanosecondsUntil(double moment) {
  const double now =
      std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
  return static_cast<std::int64_t>(
      std::ceil(std::clamp(moment - now, 0.0, longestWait) * nanosecondsPerSecond));
}

}  // namespace

int WakeTimer::openTimer() {
  const int descriptor = kqueue();
  // Fails only in a program that has used up its descriptors before its first timer; nothing could run then.
  if (descriptor < 0) qFatal("no timer: %s", std::strerror(errno));
  fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  return descriptor;
}

void WakeTimer::closeTimer(int descriptor) {
  close(descriptor);
}

void WakeTimer::setTimer(int descriptor, std::optional<double> moment) {
  struct kevent change {};
  if (moment) {
    EV_SET(&change, onlyTimer, EVFILT_TIMER, EV_ADD | EV_ONESHOT, NOTE_NSECONDS | NOTE_CRITICAL,
           nanosecondsUntil(*moment), nullptr);
  } else {
    EV_SET(&change, onlyTimer, EVFILT_TIMER, EV_DELETE, 0, 0, nullptr);
  }
  // Deleting a timer that has fired fails, and is meant to.
  kevent(descriptor, &change, 1, nullptr, 0, nullptr);
}

bool WakeTimer::takeExpiry(int descriptor) {
  struct kevent event {};
  const timespec noWait{};
  return kevent(descriptor, nullptr, 0, &event, 1, &noWait) == 1;
}

}  // namespace vorli::ui
