#include "macos/kernel/CPUCounters.h"

#import <Foundation/Foundation.h>
#include <cstdlib>
#include <mach/mach.h>

namespace vorli::machost {

std::optional<ports::CPUTicks> CPUCounters::readTicks() {
  host_cpu_load_info load{};
  mach_msg_type_number_t count = HOST_CPU_LOAD_INFO_COUNT;
  if (host_statistics(host_.get(), HOST_CPU_LOAD_INFO, reinterpret_cast<host_info_t>(&load), &count) !=
      KERN_SUCCESS)
    return std::nullopt;
  return ports::CPUTicks{
      .user = load.cpu_ticks[CPU_STATE_USER],
      .system = load.cpu_ticks[CPU_STATE_SYSTEM],
      .idle = load.cpu_ticks[CPU_STATE_IDLE],
      .nice = load.cpu_ticks[CPU_STATE_NICE],
  };
}

void CPUCounters::readLoadAverages(std::span<double, 3> averages) {
  getloadavg(averages.data(), static_cast<int>(averages.size()));  // fills what it can read
}

int CPUCounters::activeProcessorCount() {
  return static_cast<int>(NSProcessInfo.processInfo.activeProcessorCount);
}

int CPUCounters::processorCount() {
  return static_cast<int>(NSProcessInfo.processInfo.processorCount);
}

}  // namespace vorli::machost
