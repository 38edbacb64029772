#pragma once

#include "base/Logger.h"

namespace vorli::linuxhost {

/// Log of the program's requests to the desktop's own programs.
inline constexpr Logger desktopLog{logSubsystem, "desktop"};

}  // namespace vorli::linuxhost
