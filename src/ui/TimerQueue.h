#pragma once

#include "base/Scheduler.h"

#include <map>
#include <optional>
#include <utility>

namespace vorli::ui {

/// The delayed work of a scheduler and the one moment at which to wake for it. Holds no clock: every call
/// that needs the time is told it.
class TimerQueue {
 public:
  Scheduler::TimerId add(double now, double seconds, Scheduler::Work work, Scheduler::Precision precision);
  void cancel(Scheduler::TimerId timer);

  /// The latest moment that keeps every promise, or nothing when the queue is empty. Work whose time has come
  /// by any earlier wake-up is run then, so coarse delays ride on the exact ones.
  std::optional<double> nextWake() const;

  /// The earliest work that is due at `now`, taken out; nothing else that was added since `newest` counts.
  std::optional<Scheduler::Work> takeDue(double now, Scheduler::TimerId newest);

  /// The id given out last.
  Scheduler::TimerId newest() const { return lastId_; }

 private:
  struct Entry {
    double wake;  // not before the due time
    Scheduler::Work work;
  };

  Scheduler::TimerId lastId_ = 0;
  std::map<std::pair<double, Scheduler::TimerId>, Entry> entries_;  // by due time
};

}  // namespace vorli::ui
