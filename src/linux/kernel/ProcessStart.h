#pragma once

#include "base/Date.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace vorli::linuxhost {

/// Parent and start time of a process.
struct ProcessStart {
  std::int32_t parentPID = 0;
  std::uint64_t ticks = 0;  // kernel clock ticks since boot; distinguish two processes with the same number
  Date startedAt;

  bool operator==(const ProcessStart&) const = default;
};

/// Parses a `/proc/PID/stat` line. Does not set `startedAt`, which depends on the time of boot. Empty when
/// the text is not such a line.
std::optional<ProcessStart> parseProcessStart(std::string_view stat);

/// Reads the start of a process; empty when it is gone. Blocks for some tens of microseconds.
std::optional<ProcessStart> readProcessStart(std::int32_t pid);

}  // namespace vorli::linuxhost
