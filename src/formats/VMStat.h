#pragma once

#include <cstdint>
#include <string_view>

namespace vorli::formats {

/// The counters since boot of /proc/vmstat that are used; 0 for a counter that the kernel does not have.
struct VMStat {
  std::uint64_t kibibytesIn = 0;  // from block devices, including files and read-ahead
  std::uint64_t swapIn = 0;       // pages from any swap device, including compressed memory
  std::uint64_t swapOut = 0;
  std::uint64_t zswapIn = 0;  // pages taken out of zswap, which swapIn does not count; since Linux 5.19
  std::uint64_t zswapOut = 0;

  bool operator==(const VMStat&) const = default;
};

VMStat parseVMStat(std::string_view text);

}  // namespace vorli::formats
