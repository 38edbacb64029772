#include "posix/CalendarClock.h"

#include <cmath>
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

ports::LocalTime CalendarClock::localTime(Date date) const {
  const auto moment = static_cast<std::time_t>(std::floor(date.secondsSince1970));
  std::tm local{};
  if (!localtime_r(&moment, &local)) return {};
  return {.year = local.tm_year + 1900,
          .month = local.tm_mon + 1,
          .day = local.tm_mday,
          .hour = local.tm_hour,
          .minute = local.tm_min};
}

}  // namespace vorli::posix
