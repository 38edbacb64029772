#include "startup/StatsByIdentifier.h"

#include "startup/UnitIdentifier.h"

#include <cmath>
#include <cstdint>
#include <unordered_map>

namespace vorli {

namespace {

using StatsByProcess = std::unordered_map<std::int32_t, ProcessStats>;

StatsByProcess statsByProcess(const std::vector<ports::ProcessUse>& processes) {
  StatsByProcess stats;
  for (const auto& process : processes) {
    if (!std::isfinite(process.cpuPercent) || !std::isfinite(process.residentKibibytes)) continue;
    stats[process.processIdentifier] = {process.cpuPercent, process.residentKibibytes / 1024.0, true};
  }
  return stats;
}

void add(ProcessStats& total, double cpu, double memoryMB) {
  total.cpu += cpu;
  total.memoryMB += memoryMB;
  total.running = true;
}

}  // namespace

StatsByIdentifier statsByIdentifier(const std::vector<ports::RunningApplication>& applications,
                                    const std::optional<std::vector<ports::ProcessUse>>& processes,
                                    const std::vector<ports::ServiceUse>& services) {
  StatsByIdentifier stats;
  const auto byProcess = statsByProcess(processes.value_or(std::vector<ports::ProcessUse>()));
  for (const auto& application : applications) {
    if (!processes || !application.bundleIdentifier) continue;
    auto& entry = stats[std::string(application.bundleIdentifier->view())];
    const auto process = byProcess.find(application.processIdentifier);
    if (process == byProcess.end()) {
      entry = {};  // an instance without a process resets the sum of the earlier ones
    } else {
      add(entry, process->second.cpu, process->second.memoryMB);
    }
  }
  for (const auto& service : services) {
    if (!std::isfinite(service.cpuPercent) || !std::isfinite(service.memoryMB)) continue;
    const auto manager = service.isUsers ? UnitManager::user : UnitManager::system;
    add(stats[unitIdentifier(service.name, manager)], service.cpuPercent, service.memoryMB);
  }
  return stats;
}

}  // namespace vorli
