#pragma once

#include "posix/CrashHost.h"

namespace vorli::machost {

/// The functions of this system that a crash handler needs. Starts to keep a table of the loaded libraries.
/// Call it once, at the start.
posix::CrashHost crashHost();

}  // namespace vorli::machost
