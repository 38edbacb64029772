#pragma once

#include "base/Date.h"

namespace vorli::ports {

/// The calendar. It may jump, also backwards; delays are the Scheduler's.
class CalendarClock {
 public:
  virtual ~CalendarClock() = default;

  /// The present moment. Any thread; does not block.
  virtual Date now() const = 0;

  /// The hour of the present moment where the user is, 0 to 23. Main thread; does not block.
  virtual int localHour() const = 0;
};

}  // namespace vorli::ports
