#pragma once

#include "daemon/ExitCode.h"

#include <expected>

namespace vorli::linuxhost {

/// Gives up, for the life of the process, what the daemon does not need: every capability but the one to
/// signal other users' processes, new privileges through executed files, core dumps, more than 64 files, and,
/// where the kernel can, writing anywhere but in the startup folders. What is open stays usable. Before the
/// first thread. Error: something that every kernel can do failed.
std::expected<void, daemon::SystemError> narrowProcess();

}  // namespace vorli::linuxhost
