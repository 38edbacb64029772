#include "ui/WakeTimer.h"

#include <QtGlobal>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

namespace vorli::ui {
namespace {

constexpr double nanosecondsPerSecond = 1e9;
constexpr double latestMoment = 4e9;  // more than a century of uptime

int openTimer() {
  const int descriptor = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
  // Happens only to a program that has used up its descriptors before its first timer; nothing runs then.
  if (descriptor < 0) qFatal("no timer: %s", std::strerror(errno));
  return descriptor;
}

// Rounded up. All zeroes would mean never.
timespec timeAt(double moment) {
  const double seconds = std::floor(moment);
  const auto nanoseconds = static_cast<long>(std::ceil((moment - seconds) * nanosecondsPerSecond));
  timespec time{static_cast<time_t>(seconds), std::max(nanoseconds, 1L)};
  if (time.tv_nsec >= static_cast<long>(nanosecondsPerSecond)) time = {time.tv_sec + 1, 0};
  return time;
}

}  // namespace

WakeTimer::WakeTimer(UniqueFunction<void()> wake)
    : descriptor_(openTimer()), notifier_(descriptor_, QSocketNotifier::Read), wake_(std::move(wake)) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { fire(); });
}

WakeTimer::~WakeTimer() {
  notifier_.setEnabled(false);  // before its descriptor goes
  close(descriptor_);
}

void WakeTimer::set(std::optional<double> moment) {
  if (moment == moment_) return;
  moment_ = moment;
  itimerspec time{};
  if (moment) time.it_value = timeAt(std::clamp(*moment, 0.0, latestMoment));
  timerfd_settime(descriptor_, TFD_TIMER_ABSTIME, &time, nullptr);
}

void WakeTimer::fire() {
  std::uint64_t expirations = 0;
  // A moment that was put off after the loop had seen it gives nothing to read.
  if (read(descriptor_, &expirations, sizeof expirations) != sizeof expirations) return;
  moment_.reset();
  wake_();
}

}  // namespace vorli::ui
