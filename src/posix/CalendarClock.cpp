#include "posix/CalendarClock.h"

#include <ctime>

namespace vorli::posix {

Date CalendarClock::now() const {
  timespec moment{};
  clock_gettime(CLOCK_REALTIME, &moment);
  return Date{static_cast<double>(moment.tv_sec) + static_cast<double>(moment.tv_nsec) / 1e9};
}

}  // namespace vorli::posix
