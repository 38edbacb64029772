#include "formats/ProcessList.h"

#include "base/UTF8.h"
#include "formats/KernelText.h"

#include <limits>

namespace vorli::formats {

namespace {

std::optional<std::int32_t> parsePID(std::string_view digits) {
  const auto number = parseSigned(digits);
  if (!number || *number > std::numeric_limits<std::int32_t>::max() ||
      *number < std::numeric_limits<std::int32_t>::min())
    return std::nullopt;
  return static_cast<std::int32_t>(*number);
}

std::optional<ProcessListRow> parseRow(std::string_view line) {
  const auto pid = parsePID(takeWord(line));
  const auto cpuPercent = parseDecimal(takeWord(line));
  const auto residentKibibytes = parseDecimal(takeWord(line));
  if (!pid || !cpuPercent || !residentKibibytes) return std::nullopt;
  return ProcessListRow{*pid, *cpuPercent, *residentKibibytes};
}

}  // namespace

std::optional<std::vector<ProcessListRow>> parseProcessList(std::string_view text) {
  if (!isUTF8(text)) return std::nullopt;
  std::vector<ProcessListRow> rows;
  while (!text.empty()) {
    if (const auto row = parseRow(takeLine(text))) rows.push_back(*row);
  }
  return rows;
}

}  // namespace vorli::formats
