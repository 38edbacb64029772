#include "linux/kernel/MemoryCounters.h"

#include "formats/PressureStall.h"
#include "formats/VMStat.h"

#include <array>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

constexpr std::uint64_t bytesPerKibibyte = 1024;

std::uint64_t pageSize() {
  return static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

std::uint64_t pages(std::uint64_t bytes) {
  return bytes / pageSize();
}

// Classes of pages differ between systems. Free pages hold nothing at all. Wired pages can be neither dropped
// nor swapped: locked pages and those of the kernel. Purgeable pages are caches that the kernel drops on
// demand. No page is speculative: pages that were read ahead count as inactive.
void fillPageCounts(ports::VMStatistics& statistics, const formats::MemInfo& info) {
  statistics.freeCount = pages(info.free);
  statistics.activeCount = pages(info.active);
  statistics.inactiveCount = pages(info.inactive);
  statistics.wireCount = pages(info.unevictable) + pages(info.slabUnreclaimable) + pages(info.kernelStack) +
                         pages(info.pageTables);
  statistics.purgeableCount = pages(info.reclaimable);
}

}  // namespace

MemoryCounters::MemoryCounters(const std::string& root)
    : memInfoFile_(root + "/proc/meminfo"),
      vmStatFile_(root + "/proc/vmstat"),
      pressureFile_(root + "/proc/pressure/memory"),
      zramSwaps_(root) {}

std::uint64_t MemoryCounters::pageSizeBytes() {
  return pageSize();
}

std::optional<ports::VMStatistics> MemoryCounters::readStatistics() {
  lookAtMemInfo();
  std::array<char, 16 * 1024> buffer;
  const auto counters = vmStatFile_.read(buffer).value_or("");
  // Fails as a whole without these counters: as zeroes, they would seem to have jumped.
  if (!memInfo_ || counters.empty()) return std::nullopt;
  ports::VMStatistics statistics;
  fillPageCounts(statistics, *memInfo_);

  const auto stat = formats::parseVMStat(counters);
  const auto zram = memInfo_->swapTotal > 0 ? zramSwaps_.read(pageSize()) : ZramSwaps::Reading{};
  swapTraffic_.add({stat.swapIn, stat.swapOut}, zram.traffic);
  statistics.compressorPageCount = pages(memInfo_->zswap) + pages(zram.memoryBytes);
  statistics.pageins = stat.kibibytesIn / (pageSize() / bytesPerKibibyte);
  statistics.swapins = swapTraffic_.onDisks().in;
  statistics.swapouts = swapTraffic_.onDisks().out;
  // A page-out is a page that left memory because something else needed the space. The kernel counts such
  // writes of file pages together with ordinary saves, so copying one big file would look like memory
  // pressure. Therefore only pages written to swap on a disk are counted.
  statistics.pageouts = statistics.swapouts;
  statistics.decompressions = stat.zswapIn + swapTraffic_.onZram().in;
  statistics.compressions = stat.zswapOut + swapTraffic_.onZram().out;
  return statistics;
}

std::uint64_t MemoryCounters::physicalMemoryBytes() {
  const auto& info = memInfoFor(physicalMemory);
  return info ? info->total : 0;
}

std::optional<ports::SwapUsage> MemoryCounters::readSwapUsage() {
  const auto& info = memInfoFor(swapUsage);
  if (!info) return std::nullopt;
  const auto used = info->swapTotal > info->swapFree ? info->swapTotal - info->swapFree : 0;
  return ports::SwapUsage{used, info->swapTotal};
}

ports::PressureReading MemoryCounters::readPressure() {
  std::array<char, 512> buffer;
  const auto stall = formats::parsePressureStall(pressureFile_.read(buffer).value_or(""));
  ports::PressureReading reading{.kernelLevel = {},
                                 .someStallPercent = stall.some,
                                 .fullStallPercent = stall.full,
                                 .availableBytes = {},
                                 .totalBytes = {}};
  if (const auto& info = memInfoFor(pressure)) {
    reading.availableBytes = info->available;
    reading.totalBytes = info->total;
  }
  return reading;
}

void MemoryCounters::lookAtMemInfo() {
  std::array<char, 8 * 1024> buffer;
  memInfo_ = formats::parseMemInfo(memInfoFile_.read(buffer).value_or(""));
  servedReaders_ = 0;
}

const std::optional<formats::MemInfo>& MemoryCounters::memInfoFor(Reader reader) {
  if (servedReaders_ & reader) lookAtMemInfo();
  servedReaders_ |= reader;
  return memInfo_;
}

}  // namespace vorli::linuxhost
