#pragma once

#include <compare>

namespace vorli {

/// A moment in calendar time, in seconds since 1970-01-01 00:00 UTC. Measure delays with the Scheduler's
/// monotonic clock instead: a Date jumps when the clock is set.
struct Date {
  double secondsSince1970 = 0.0;

  /// The first of January of the year 1, earlier than any real reading. Marks an empty snapshot.
  static constexpr Date distantPast() { return Date{-62135596800.0}; }

  // NOLINTNEXTLINE(modernize-use-nullptr): where two dates are compared, it takes the zero for a pointer
  auto operator<=>(const Date&) const = default;
};

/// Seconds from `earlier` to `later`; negative when the clock was set back between the two.
constexpr double operator-(Date later, Date earlier) {
  return later.secondsSince1970 - earlier.secondsSince1970;
}

constexpr Date operator+(Date date, double seconds) {
  return Date{date.secondsSince1970 + seconds};
}

}  // namespace vorli
