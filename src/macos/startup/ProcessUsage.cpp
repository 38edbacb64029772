#include "macos/startup/ProcessUsage.h"

#include "formats/ProcessList.h"
#include "macos/startup/SystemTool.h"

namespace vorli::machost {

std::optional<std::vector<ports::ProcessUse>> ProcessUsage::processes() {
  const auto output = runTool("/bin/ps", {"-axo", "pid=,pcpu=,rss="});
  const auto rows = output ? formats::parseProcessList(*output) : std::nullopt;
  if (!rows) return std::nullopt;
  std::vector<ports::ProcessUse> uses;
  for (const auto& row : *rows)
    uses.push_back({row.processIdentifier, row.cpuPercent, row.residentKibibytes});
  return uses;
}

std::vector<ports::ServiceUse> ProcessUsage::services() {
  return {};
}

}  // namespace vorli::machost
