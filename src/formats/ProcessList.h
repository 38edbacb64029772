#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vorli::formats {

/// One line of the output of `ps -axo pid=,pcpu=,rss=`.
struct ProcessListRow {
  std::int32_t processIdentifier = 0;
  double cpuPercent = 0.0;  // of one core
  double residentKibibytes = 0.0;

  bool operator==(const ProcessListRow&) const = default;
};

/// Leaves out lines that do not begin with a process identifier and two numbers; the rest of a line is
/// ignored. Empty when the text is not UTF-8.
std::optional<std::vector<ProcessListRow>> parseProcessList(std::string_view text);

}  // namespace vorli::formats
