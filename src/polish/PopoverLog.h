#pragma once

#include "base/Logger.h"

#include <string>

namespace vorli {

/// The log of the popover, and of the polish that starts there.
inline constexpr Logger popoverLog{logSubsystem, "popover"};

/// For those of its lines that show a number as a text: two places after the point.
std::string twoDecimals(double number);

}  // namespace vorli
