#pragma once

#include "daemon/SystemError.h"

#include <expected>

namespace vorli::linuxhost {

/// Gives up, for the life of the process, what the daemon does not need: every capability except the one to
/// signal other users' processes, new privileges through executed files, core dumps, more than 128 open files
/// and, where the kernel supports it, writing anywhere but in the startup folders. Open files stay usable.
/// Call it before the first thread starts. Error: a step that every kernel supports failed.
[[nodiscard]] std::expected<void, daemon::SystemError> narrowProcess();

}  // namespace vorli::linuxhost
