#include "ui/loop/WakeTimer.h"

#include <QtGlobal>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <sys/timerfd.h>
#include <unistd.h>

namespace vorli::ui {
namespace {

constexpr double nanosecondsPerSecond = 1e9;
constexpr double latestMoment = 4e9;  // more than a century of uptime

// Rounds up, and never returns zero, which would disarm the timer.
timespec timeAt(double moment) {
  const double seconds = std::floor(moment);
  const auto nanoseconds = static_cast<long>(std::ceil((moment - seconds) * nanosecondsPerSecond));
  timespec time{static_cast<time_t>(seconds), std::max(nanoseconds, 1L)};
  if (time.tv_nsec >= static_cast<long>(nanosecondsPerSecond)) time = {time.tv_sec + 1, 0};
  return time;
}

}  // namespace

int WakeTimer::openTimer() {
  const int descriptor = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
  // Fails only in a program that has used up its descriptors before its first timer; nothing could run then.
  if (descriptor < 0) qFatal("no timer: %s", std::strerror(errno));
  return descriptor;
}

void WakeTimer::closeTimer(int descriptor) {
  close(descriptor);
}

void WakeTimer::setTimer(int descriptor, std::optional<double> moment) {
  itimerspec time{};
  if (moment) time.it_value = timeAt(std::clamp(*moment, 0.0, latestMoment));
  timerfd_settime(descriptor, TFD_TIMER_ABSTIME, &time, nullptr);
}

bool WakeTimer::takeExpiry(int descriptor) {
  std::uint64_t expirations = 0;
  return read(descriptor, &expirations, sizeof expirations) == sizeof expirations;
}

}  // namespace vorli::ui
