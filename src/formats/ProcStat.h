#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vorli::formats {

/// The fields of /proc/PID/stat that are used. Times are in clock ticks.
struct ProcStat {
  std::string_view name;  // any bytes; points into the parsed text
  std::int32_t parentPID = 0;
  std::uint64_t userTicks = 0;
  std::uint64_t systemTicks = 0;
  std::uint64_t startTicks = 0;  // since boot
  bool hasMemory = false;        // false for a kernel thread and for a process that has ended
  std::uint64_t residentPages = 0;

  bool operator==(const ProcStat&) const = default;
};

/// Empty when the text is truncated or something else, or when a number makes no sense: a parent or times
/// that no process can have.
std::optional<ProcStat> parseProcStat(std::string_view text);

/// Parses the resident pages from /proc/PID/statm.
std::optional<std::uint64_t> parseResidentPages(std::string_view text);

}  // namespace vorli::formats
