#include "macos/daemon/MainQueueScheduler.h"

#include <CoreFoundation/CoreFoundation.h>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <dispatch/dispatch.h>
#include <map>
#include <time.h>
#include <utility>

namespace vorli::machost {

namespace {

constexpr double longestDelaySeconds = 4e9;  // more than a century
constexpr std::uint64_t coarseShare = 20;

}  // namespace

struct MainQueueScheduler::Timers {
  struct Timer {
    dispatch_source_t source;
    Work work;
  };

  void fire(TimerId id) {
    auto timer = pending.extract(id);
    if (timer.empty()) return;
    dispatch_source_cancel(timer.mapped().source);
    timer.mapped().work();
  }

  std::map<TimerId, Timer> pending;
};

MainQueueScheduler::MainQueueScheduler() : timers_(std::make_shared<Timers>()) {}

// Reads the clock of the timers, which stops while the machine sleeps.
double MainQueueScheduler::now() const {
  return static_cast<double>(clock_gettime_nsec_np(CLOCK_UPTIME_RAW)) / static_cast<double>(NSEC_PER_SEC);
}

void MainQueueScheduler::post(Work work) {
  const auto shared = std::make_shared<Work>(std::move(work));
  dispatch_async(dispatch_get_main_queue(), ^{
    (*shared)();
  });
}

Scheduler::TimerId MainQueueScheduler::after(double seconds, Work work, Precision precision) {
  const TimerId id = ++lastId_;
  // Rounds up: the work must not be early.
  const auto delay = static_cast<std::int64_t>(
      std::ceil(std::clamp(seconds, 0.0, longestDelaySeconds) * static_cast<double>(NSEC_PER_SEC)));
  const auto leeway = precision == Precision::coarse ? static_cast<std::uint64_t>(delay) / coarseShare : 0;
  const auto source = dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, dispatch_get_main_queue());
  const std::weak_ptr<Timers> timers = timers_;
  dispatch_source_set_event_handler(source, ^{
    if (const auto alive = timers.lock()) alive->fire(id);
  });
  dispatch_source_set_timer(source, dispatch_time(DISPATCH_TIME_NOW, delay), DISPATCH_TIME_FOREVER, leeway);
  timers_->pending.emplace(id, Timers::Timer{source, std::move(work)});
  dispatch_resume(source);
  return id;
}

void MainQueueScheduler::cancel(TimerId timer) {
  const auto cancelled = timers_->pending.extract(timer);
  if (!cancelled.empty()) dispatch_source_cancel(cancelled.mapped().source);
}

void MainQueueScheduler::run() {
  CFRunLoopRun();
}

// Posts the stop, because one before the loop runs would be lost.
void MainQueueScheduler::stop() {
  dispatch_async(dispatch_get_main_queue(), ^{
    CFRunLoopStop(CFRunLoopGetMain());
  });
}

}  // namespace vorli::machost
