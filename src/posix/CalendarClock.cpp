#include "posix/CalendarClock.h"

#include <cmath>
#include <ctime>

namespace vorli::posix {

namespace {

// Looks at the user's time zone each time: the reentrant function may keep the zone of its first call.
bool toLocal(std::time_t moment, std::tm& local) {
  tzset();
  return localtime_r(&moment, &local) != nullptr;
}

}  // namespace

Date CalendarClock::now() const {
  timespec moment{};
  clock_gettime(CLOCK_REALTIME, &moment);
  return Date{static_cast<double>(moment.tv_sec) + static_cast<double>(moment.tv_nsec) / 1e9};
}

int CalendarClock::localHour() const {
  std::tm local{};
  return toLocal(std::time(nullptr), local) ? local.tm_hour : 0;
}

ports::LocalTime CalendarClock::localTime(Date date) const {
  std::tm local{};
  if (!toLocal(static_cast<std::time_t>(std::floor(date.secondsSince1970)), local)) return {};
  return {.year = local.tm_year + 1900,
          .month = local.tm_mon + 1,
          .day = local.tm_mday,
          .hour = local.tm_hour,
          .minute = local.tm_min};
}

}  // namespace vorli::posix
