#pragma once

#include "posix/CrashHost.h"

namespace vorli::linuxhost {

/// The functions of this system that a crash handler needs. Opens the program's own file for the names of its
/// functions; call it once at start.
posix::CrashHost crashHost();

}  // namespace vorli::linuxhost
