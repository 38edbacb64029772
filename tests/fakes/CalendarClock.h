#pragma once

#include "base/Scheduler.h"
#include "ports/CalendarClock.h"

namespace vorli::fakes {

/// A calendar that stands still until a test sets it, or that follows a scheduler's virtual time.
class CalendarClock final : public ports::CalendarClock {
 public:
  CalendarClock() = default;
  explicit CalendarClock(Date start) : at_(start) {}

  /// Follows `scheduler` from `start` on.
  explicit CalendarClock(const Scheduler& scheduler, Date start = Date{1'000'000.0})
      : at_(start), scheduler_(&scheduler), origin_(scheduler.now()) {}

  Date now() const override {
    ++reads_;
    return scheduler_ ? at_ + (scheduler_->now() - origin_) : at_;
  }

  int localHour() const override { return hour; }

  ports::LocalTime localTime(Date) const override { return local; }

  int hour = 12;  // of the day, whatever the date says
  ports::LocalTime local{.year = 2026, .month = 3, .day = 1, .hour = 9, .minute = 30};  // of every date

  /// Jumps, possibly backwards; a calendar that follows a scheduler continues from there.
  void set(Date date) {
    at_ = date;
    if (scheduler_) origin_ = scheduler_->now();
  }
  void advance(double seconds) { at_ = at_ + seconds; }

  int reads() const { return reads_; }

 private:
  Date at_{1'000'000.0};
  const Scheduler* scheduler_ = nullptr;
  double origin_ = 0.0;
  mutable int reads_ = 0;
};

}  // namespace vorli::fakes
