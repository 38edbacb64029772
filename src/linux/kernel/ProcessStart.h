#pragma once

#include "base/Date.h"

#include <cstdint>
#include <optional>

namespace vorli::linuxhost {

/// Start time of a process.
struct ProcessStart {
  std::uint64_t ticks = 0;  // kernel clock ticks since boot; distinguish two processes with the same number
  Date startedAt;

  bool operator==(const ProcessStart&) const = default;
};

/// Reads the start of a process; empty when it is gone. Blocks for some tens of microseconds.
std::optional<ProcessStart> readProcessStart(std::int32_t pid);

}  // namespace vorli::linuxhost
