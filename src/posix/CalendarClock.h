#pragma once

#include "ports/CalendarClock.h"

namespace vorli::posix {

/// The system's real-time clock.
class CalendarClock final : public ports::CalendarClock {
 public:
  Date now() const override;
  int localHour() const override;
  ports::LocalTime localTime(Date date) const override;
};

}  // namespace vorli::posix
