#pragma once

#include "base/Scheduler.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>

namespace vorli::fakes {

/// Virtual time: nothing happens until a test moves the clock. Then due work runs in order of its time,
/// including the work that it creates. Posting is thread-safe.
class ManualScheduler final : public Scheduler {
 public:
  ManualScheduler() = default;
  ~ManualScheduler() override {
    // Work that is destroyed here may still cancel or queue other work.
    while (!timers_.empty()) takeTimer();
    while (takePosted()) {
    }
  }

  double now() const override { return now_; }

  void post(Work work) override {
    const std::lock_guard guard(lock_);
    posted_.push_back(std::move(work));
    hasPosted_.notify_one();
  }

  TimerId after(double seconds, Work work, Precision = Precision::exact) override {
    const TimerId id = ++lastId_;
    timers_.emplace(std::pair(now_ + std::max(seconds, 0.0), id), std::move(work));
    return id;
  }

  void cancel(TimerId timer) override {
    const auto found = std::find_if(timers_.begin(), timers_.end(),
                                    [timer](const auto& entry) { return entry.first.second == timer; });
    if (found == timers_.end()) return;
    const auto gone = timers_.extract(found);  // destroyed outside of the map, because it may cancel others
  }

  /// Runs the queued work and the work that it queues, and timers that are due. The clock stands still.
  void runReady() {
    for (;;) {
      if (auto work = takePosted()) {
        work();
      } else if (!timers_.empty() && timers_.begin()->first.first <= now_) {
        takeTimer()();
      } else {
        return;
      }
    }
  }

  /// Moves the clock by `seconds`, and runs each piece of work that is due on the way, edges included.
  void advance(double seconds) { advanceTo(now_ + seconds); }

  void advanceTo(double target) {
    runReady();
    while (!timers_.empty() && timers_.begin()->first.first <= target) {
      now_ = std::max(now_.load(), timers_.begin()->first.first);
      runReady();
    }
    now_ = std::max(now_.load(), target);
    runReady();
  }

  /// Moves the clock without running anything, as when the main thread is blocked.
  void advanceClockOnly(double seconds) { now_ = now_ + seconds; }

  /// Waits until another thread has queued work; returns false if there is none at the deadline.
  bool waitForPost(std::chrono::steady_clock::time_point deadline) {
    std::unique_lock guard(lock_);
    return hasPosted_.wait_until(guard, deadline, [this] { return !posted_.empty(); });
  }

  /// Number of queued pieces of work.
  std::size_t postedCount() {
    const std::lock_guard guard(lock_);
    return posted_.size();
  }
  std::size_t pendingTimers() const { return timers_.size(); }
  /// Time of the next timer, or infinity.
  double earliestDeadline() const { return timers_.empty() ? INFINITY : timers_.begin()->first.first; }

 private:
  Work takePosted() {
    const std::lock_guard guard(lock_);
    if (posted_.empty()) return nullptr;
    Work work = std::move(posted_.front());
    posted_.pop_front();
    return work;
  }

  Work takeTimer() {
    auto node = timers_.extract(timers_.begin());
    return std::move(node.mapped());
  }

  std::atomic<double> now_ = 1000.0;  // not 0, so that a forgotten origin shows
  TimerId lastId_ = 0;
  std::map<std::pair<double, TimerId>, Work> timers_;
  std::mutex lock_;
  std::condition_variable hasPosted_;
  std::deque<Work> posted_;
};

}  // namespace vorli::fakes
