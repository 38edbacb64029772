#pragma once

#include "base/Logger.h"

#include <string>

namespace vorli {

/// Log of the popover, and of the polish that starts there.
inline constexpr Logger popoverLog{logSubsystem, "popover"};

/// Formats a number with two decimal places, for log lines.
std::string twoDecimals(double number);

}  // namespace vorli
