#pragma once

#include "base/Date.h"

namespace vorli::ports {

/// A moment in local time.
struct LocalTime {
  int year = 1970;
  int month = 1;  // 1 to 12
  int day = 1;
  int hour = 0;
  int minute = 0;
};

/// The calendar clock. It may jump, even backwards; use the Scheduler for delays.
class CalendarClock {
 public:
  virtual ~CalendarClock() = default;

  /// The present moment. Any thread; does not block.
  virtual Date now() const = 0;

  /// The current hour in the user's time zone, 0 to 23. Main thread; does not block.
  virtual int localHour() const = 0;

  /// Converts the moment to the user's time zone. Main thread; does not block.
  virtual LocalTime localTime(Date date) const = 0;
};

}  // namespace vorli::ports
