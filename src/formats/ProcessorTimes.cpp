#include "formats/ProcessorTimes.h"

#include "base/Blanks.h"
#include "formats/KernelText.h"

namespace vorli::formats {

namespace {

constexpr std::uint64_t mostProcessors = 1 << 20;

}  // namespace

std::optional<ProcessorTimes> parseProcessorTimes(std::string_view text) {
  auto line = takeLine(text);
  if (takeWord(line) != "cpu") return std::nullopt;
  const auto user = parseWhole(takeWord(line));
  const auto nice = parseWhole(takeWord(line));
  const auto system = parseWhole(takeWord(line));
  const auto idle = parseWhole(takeWord(line));
  if (!user || !nice || !system || !idle) return std::nullopt;
  ProcessorTimes times{.user = *user, .nice = *nice, .system = *system, .idle = *idle};
  times.inputOutputWait = parseWhole(takeWord(line)).value_or(0);
  times.interrupt = parseWhole(takeWord(line)).value_or(0);
  times.softInterrupt = parseWhole(takeWord(line)).value_or(0);
  return times;
}

std::optional<int> parseProcessorCount(std::string_view list) {
  list = withoutBlanks(list);
  std::uint64_t count = 0;
  while (!list.empty()) {
    const auto range = list.substr(0, list.find(','));
    list.remove_prefix(range.size());
    if (!list.empty()) list.remove_prefix(1);
    const auto dash = range.find('-');
    const auto first = parseWhole(range.substr(0, dash));
    const auto last = dash == std::string_view::npos ? first : parseWhole(range.substr(dash + 1));
    if (!first || !last || *first > *last || *last >= mostProcessors) return std::nullopt;
    count += *last - *first + 1;
    if (count > mostProcessors) return std::nullopt;
  }
  if (count == 0) return std::nullopt;
  return static_cast<int>(count);
}

std::optional<double> parseUptime(std::string_view text) {
  return parseDecimal(takeWord(text));
}

}  // namespace vorli::formats
