#include "linux/kernel/ProcessStart.h"

#include "linux/kernel/SmallFile.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

template <typename Number>
bool readNumber(std::string_view& rest, Number& number) {
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  const auto [end, failed] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
  if (failed != std::errc()) return false;
  rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
  return true;
}

Date bootTime() {
  const auto text = readSmallFile("/proc/stat", 1024 * 1024).value_or("");
  const auto line = text.find("\nbtime ");
  if (line == std::string::npos) return {};
  std::string_view rest = std::string_view(text).substr(line + 7);
  std::int64_t seconds = 0;
  return readNumber(rest, seconds) ? Date{static_cast<double>(seconds)} : Date{};
}

}  // namespace

std::optional<ProcessStart> parseProcessStart(std::string_view stat) {
  // The name before it may be any text, brackets included.
  const auto bracket = stat.rfind(") ");
  if (bracket == std::string_view::npos || bracket + 3 > stat.size()) return std::nullopt;
  stat.remove_prefix(bracket + 3);  // removes the state letter too
  ProcessStart start;
  if (!readNumber(stat, start.parentPID)) return std::nullopt;
  std::int64_t skipped = 0;
  for (int field = 5; field < 22; ++field) {
    if (!readNumber(stat, skipped)) return std::nullopt;
  }
  if (!readNumber(stat, start.ticks)) return std::nullopt;
  return start;
}

std::optional<ProcessStart> readProcessStart(std::int32_t pid) {
  const auto stat = readSmallFile("/proc/" + std::to_string(pid) + "/stat", 4096);
  auto start = stat ? parseProcessStart(*stat) : std::nullopt;
  if (start) {
    start->startedAt =
        bootTime() + static_cast<double>(start->ticks) / static_cast<double>(sysconf(_SC_CLK_TCK));
  }
  return start;
}

}  // namespace vorli::linuxhost
