#pragma once

#include <optional>
#include <string_view>

namespace vorli::formats {

/// Share of the last ten seconds in which some, or all, runnable tasks were stalled, in percent.
struct PressureStall {
  std::optional<double> some;
  std::optional<double> full;

  bool operator==(const PressureStall&) const = default;
};

/// Reads a file of /proc/pressure.
PressureStall parsePressureStall(std::string_view text);

}  // namespace vorli::formats
