#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vorli::formats {

/// Clock ticks since boot, summed over all processors, from the first line of /proc/stat.
struct ProcessorTimes {
  std::uint64_t user = 0;
  std::uint64_t nice = 0;
  std::uint64_t system = 0;
  std::uint64_t idle = 0;
  std::uint64_t inputOutputWait = 0;
  std::uint64_t interrupt = 0;
  std::uint64_t softInterrupt = 0;

  bool operator==(const ProcessorTimes&) const = default;
};

/// Empty when one of the first four is missing.
std::optional<ProcessorTimes> parseProcessorTimes(std::string_view text);

/// Counts the processors in a list such as "0-3,6". Empty when the text is not such a list.
std::optional<int> parseProcessorCount(std::string_view list);

/// Parses the seconds since boot from /proc/uptime.
std::optional<double> parseUptime(std::string_view text);

}  // namespace vorli::formats
