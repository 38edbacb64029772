#include "linux/kernel/ProcessStart.h"

#include "formats/KernelText.h"
#include "formats/KeyedLines.h"
#include "formats/ProcStat.h"
#include "linux/kernel/SmallFile.h"

#include <string>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

Date bootTime() {
  const auto text = readSmallFile("/proc/stat", 1024 * 1024).value_or("");
  const auto seconds = formats::KeyedLines(text).valueOf("btime ");
  return Date{static_cast<double>(seconds ? formats::parseWhole(*seconds).value_or(0) : 0)};
}

}  // namespace

std::optional<ProcessStart> readProcessStart(std::int32_t pid) {
  const auto text = readSmallFile("/proc/" + std::to_string(pid) + "/stat", 4096);
  const auto stat = text ? formats::parseProcStat(*text) : std::nullopt;
  if (!stat) return std::nullopt;
  const double uptime = static_cast<double>(stat->startTicks) / static_cast<double>(sysconf(_SC_CLK_TCK));
  return ProcessStart{.ticks = stat->startTicks, .startedAt = bootTime() + uptime};
}

}  // namespace vorli::linuxhost
