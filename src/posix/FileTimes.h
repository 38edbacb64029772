#pragma once

#include "base/Date.h"

#include <ctime>

namespace vorli::posix {

inline Date dateOf(const timespec& time) {
  constexpr double nanosecondsPerSecond = 1e9;
  return Date{static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / nanosecondsPerSecond};
}

}  // namespace vorli::posix
