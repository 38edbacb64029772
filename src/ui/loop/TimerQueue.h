#pragma once

#include "base/Scheduler.h"

#include <map>
#include <optional>
#include <utility>

namespace vorli::ui {

/// The delayed work of a scheduler and the next moment at which to wake for it. Has no clock: each call that
/// needs the time takes it as an argument.
class TimerQueue {
 public:
  Scheduler::TimerId add(double now, double seconds, Scheduler::Work work, Scheduler::Precision precision);
  void cancel(Scheduler::TimerId timer);

  /// The latest wake-up that meets every deadline; empty when the queue is empty. Work that is due at an
  /// earlier wake-up runs then, so coarse delays share the wake-ups of exact ones.
  std::optional<double> nextWake() const;

  /// Removes and returns the earliest work that is due at `now`. Work that was added after `newest` is
  /// ignored.
  std::optional<Scheduler::Work> takeDue(double now, Scheduler::TimerId newest);

  /// The id that was assigned last.
  Scheduler::TimerId newest() const { return lastId_; }

 private:
  struct Entry {
    double wake;  // not before the due time
    Scheduler::Work work;
  };

  Scheduler::TimerId lastId_ = 0;
  std::map<std::pair<double, Scheduler::TimerId>, Entry> entries_;  // sorted by due time
};

}  // namespace vorli::ui
