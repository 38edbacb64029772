#include "posix/CalendarClock.h"

#include <ctime>

namespace vorli::posix {

Date CalendarClock::now() const {
  timespec moment{};
  clock_gettime(CLOCK_REALTIME, &moment);
  return Date{static_cast<double>(moment.tv_sec) + static_cast<double>(moment.tv_nsec) / 1e9};
}

int CalendarClock::localHour() const {
  const std::time_t moment = std::time(nullptr);
  std::tm local{};
  return localtime_r(&moment, &local) ? local.tm_hour : 0;
}

}  // namespace vorli::posix
