#include "linux/MemoryCounters.h"

#include "linux/PressureStall.h"
#include "linux/VMStat.h"

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

// The classes of pages do not mean the same on every system. Free is what holds nothing at all. Wired is what
// can be neither dropped nor swapped: locked pages and the kernel's own. Purgeable are the kernel's caches
// that it gives up on demand. Nothing here is speculative: pages read ahead count as inactive.
void fillPageCounts(ports::VMStatistics& statistics, const MemInfo& info) {
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
  if (!memInfo_) return std::nullopt;
  ports::VMStatistics statistics;
  fillPageCounts(statistics, *memInfo_);

  std::array<char, 16 * 1024> buffer;
  const auto stat = parseVMStat(vmStatFile_.read(buffer).value_or(""));
  const auto zram = memInfo_->swapTotal > 0 ? zramSwaps_.read(pageSize()) : ZramSwaps::Reading{};
  swapTraffic_.add({stat.swapIn, stat.swapOut}, zram.traffic);
  statistics.compressorPageCount = pages(memInfo_->zswap) + pages(zram.memoryBytes);
  statistics.pageins = stat.kibibytesIn / (pageSize() / bytesPerKibibyte);
  statistics.swapins = swapTraffic_.onDisks().in;
  statistics.swapouts = swapTraffic_.onDisks().out;
  // A page-out is a page that left the memory because something else needed the room. The kernel counts its
  // writes of file pages only together with what programs saved in the ordinary course, where copying one
  // big file would look like distress; so the pages sent to a disk's swap stand for all.
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
  const auto stall = parsePressureStall(pressureFile_.read(buffer).value_or(""));
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
  memInfo_ = parseMemInfo(memInfoFile_.read(buffer).value_or(""));
  servedReaders_ = 0;
}

const std::optional<MemInfo>& MemoryCounters::memInfoFor(Reader reader) {
  if (servedReaders_ & reader) lookAtMemInfo();
  servedReaders_ |= reader;
  return memInfo_;
}

}  // namespace vorli::linuxhost
