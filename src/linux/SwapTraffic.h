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

/// What one compressed swap device in memory has moved since it was made.
struct ZramTraffic {
  std::uint32_t device = 0;
  PageTraffic pages;
};

/// Tells swap on disks from swap on compressed memory. The kernel counts both in one pair of counters, but a
/// page that zram took never left the memory: reading it back is a decompression and costs microseconds,
/// where a disk costs milliseconds.
class SwapTraffic {
 public:
  /// Takes the next look: the kernel's counters since boot, and those of each zram device in use.
  void add(const PageTraffic& all, std::vector<ZramTraffic> zram);

  /// Since boot, as far as the devices of the first look can tell; never falling.
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
