#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vorli::formats {

/// Traffic of a block device since it was created, in sectors of 512 bytes.
struct BlockTraffic {
  std::uint64_t sectorsRead = 0;
  std::uint64_t sectorsWritten = 0;

  bool operator==(const BlockTraffic&) const = default;
};

/// Returns the numbers N of the devices /dev/zramN in /proc/swaps, in the same order.
std::vector<std::uint32_t> parseZramSwaps(std::string_view text);

/// Reads /sys/block/DEVICE/stat. Empty when either number is missing.
std::optional<BlockTraffic> parseBlockTraffic(std::string_view text);

/// Parses the memory in bytes that a compressed device uses, from /sys/block/zramN/mm_stat.
std::optional<std::uint64_t> parseZramMemoryUsed(std::string_view text);

}  // namespace vorli::formats
