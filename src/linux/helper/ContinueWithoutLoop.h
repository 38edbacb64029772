#pragma once

#include <cstdint>
#include <set>

namespace vorli::linuxhost {

/// Asks the daemon to resume stopped processes, without a main loop or other threads: for a process that a
/// library is ending. Blocks for at most 2 s per process. Failures are logged.
void continueWithoutLoop(const std::set<std::int32_t>& pids);

}  // namespace vorli::linuxhost
