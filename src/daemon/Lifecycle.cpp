#include "daemon/Lifecycle.h"

#include <memory>
#include <utility>

namespace vorli::daemon {

Lifecycle::Lifecycle(Scheduler& scheduler, Link& link, std::function<std::size_t()> inFlight,
                     double idleSeconds)
    : scheduler_(scheduler),
      link_(link),
      inFlight_(std::move(inFlight)),
      idleSeconds_(idleSeconds),
      lastActivity_(scheduler.now()) {}

Lifecycle::~Lifecycle() {
  scheduler_.cancel(idleTimer_);
  scheduler_.cancel(drainTimer_);
}

void Lifecycle::start() {
  touch();
  watchIdleness(idleSeconds_);
}

// Calls do not restart the timer: when due, it checks the time of the last call. So a call costs no timer.
void Lifecycle::watchIdleness(double seconds) {
  idleTimer_ = scheduler_.after(seconds, [this] {
    const double left = lastActivity_ + idleSeconds_ - scheduler_.now();
    if (inFlight_() > 0) {
      watchIdleness(idleSeconds_);
    } else if (left > 0.0) {
      watchIdleness(left);
    } else {
      leave();
    }
  });
}

void Lifecycle::requestEnded() {
  touch();
  stopIfDrained();
}

void Lifecycle::leave() {
  if (std::exchange(leaving_, true)) return;
  scheduler_.cancel(idleTimer_);
  // Makes the bus start a new process for new calls. The service manager is not notified separately:
  // it sees that the name is released. If it heard of the exit before it had seen the start, it would take
  // the start for the next call as already done.
  link_.releaseName();
  drainTimer_ = scheduler_.after(Timing::drainSeconds, [this] { link_.stop(); });
  link_.barrier(OnceReply<bool>([this, alive = std::weak_ptr(alive_)](bool) {
    if (alive.expired()) return;
    everythingReceived_ = true;
    stopIfDrained();
  }));
}

void Lifecycle::stopIfDrained() {
  if (leaving_ && everythingReceived_ && inFlight_() == 0) link_.stop();
}

}  // namespace vorli::daemon
