#pragma once

#include "base/Date.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace vorli::linuxhost {

/// Who started a process, and when.
struct ProcessStart {
  std::int32_t parentPID = 0;
  std::uint64_t ticks = 0;  // of the kernel's clock since boot: tells two processes with one number apart
  Date startedAt;

  bool operator==(const ProcessStart&) const = default;
};

/// Reads a `/proc/PID/stat` line; `startedAt` is left for who knows the time of boot. Empty when it is none.
std::optional<ProcessStart> parseProcessStart(std::string_view stat);

/// Empty when the process is gone. Blocks for some tens of microseconds.
std::optional<ProcessStart> readProcessStart(std::int32_t pid);

}  // namespace vorli::linuxhost
