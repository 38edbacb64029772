#include "macos/kernel/MemoryCounters.h"

#import <Foundation/Foundation.h>
#include <array>
#include <cstring>
#include <mach/mach.h>
#include <mach/vm_page_size.h>
#include <sys/sysctl.h>

namespace vorli::machost {

namespace {

// Words of the record on current systems. The headers of an older one have fewer: the kernel fills as many as
// both sides know, and the fields that are read here never moved.
constexpr mach_msg_type_number_t statisticsWords = 62;
static_assert(sizeof(vm_statistics64) <= statisticsWords * sizeof(integer_t));
static_assert(sizeof(xsw_usage) == 32);

}  // namespace

std::uint64_t MemoryCounters::pageSizeBytes() {
  return vm_kernel_page_size;
}

std::optional<ports::VMStatistics> MemoryCounters::readStatistics() {
  std::array<integer_t, statisticsWords> words{};
  mach_msg_type_number_t count = statisticsWords;
  if (host_statistics64(host_.get(), HOST_VM_INFO64, words.data(), &count) != KERN_SUCCESS)
    return std::nullopt;
  vm_statistics64 kernel{};
  std::memcpy(&kernel, words.data(), sizeof kernel);
  return ports::VMStatistics{
      .freeCount = kernel.free_count,
      .activeCount = kernel.active_count,
      .inactiveCount = kernel.inactive_count,
      .wireCount = kernel.wire_count,
      .compressorPageCount = kernel.compressor_page_count,
      .speculativeCount = kernel.speculative_count,
      .purgeableCount = kernel.purgeable_count,
      .pageins = kernel.pageins,
      .pageouts = kernel.pageouts,
      .swapins = kernel.swapins,
      .swapouts = kernel.swapouts,
      .decompressions = kernel.decompressions,
      .compressions = kernel.compressions,
  };
}

std::uint64_t MemoryCounters::physicalMemoryBytes() {
  return NSProcessInfo.processInfo.physicalMemory;
}

std::optional<ports::SwapUsage> MemoryCounters::readSwapUsage() {
  xsw_usage usage{};
  std::size_t size = sizeof usage;
  if (sysctlbyname("vm.swapusage", &usage, &size, nullptr, 0) != 0) return std::nullopt;
  return ports::SwapUsage{.usedBytes = usage.xsu_used, .totalBytes = usage.xsu_total};
}

ports::PressureReading MemoryCounters::readPressure() {
  std::int32_t level = 0;
  std::size_t size = sizeof level;
  ports::PressureReading reading;
  if (sysctlbyname("kern.memorystatus_vm_pressure_level", &level, &size, nullptr, 0) == 0)
    reading.kernelLevel = level;
  return reading;
}

}  // namespace vorli::machost
