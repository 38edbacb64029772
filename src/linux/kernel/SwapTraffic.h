#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace vorli::linuxhost {

/// Pages moved into memory and out of it.
struct PageTraffic {
  std::uint64_t in = 0;
  std::uint64_t out = 0;

  bool operator==(const PageTraffic&) const = default;
};

/// Traffic of one compressed swap device in memory since it was created.
struct ZramTraffic {
  std::uint32_t device = 0;
  PageTraffic pages;
};

/// Separates swap on disks from swap in compressed memory. The kernel counts both in one pair of counters,
/// but a page in zram never leaves memory: reading it back is a decompression, which takes microseconds where
/// a disk takes milliseconds.
class SwapTraffic {
 public:
  /// Adds a reading: the kernel's counters since boot, and those of each zram device in use.
  void add(const PageTraffic& all, std::vector<ZramTraffic> zram);

  /// Pages moved since boot, as far as the devices of the first reading show. Never decreases.
  const PageTraffic& onDisks() const { return onDisks_; }
  const PageTraffic& onZram() const { return onZram_; }

 private:
  PageTraffic zramGrowth(const std::vector<ZramTraffic>& now) const;

  std::optional<PageTraffic> lastAll_;
  std::vector<ZramTraffic> lastZram_;
  PageTraffic onDisks_;
  PageTraffic onZram_;
};

}  // namespace vorli::linuxhost
