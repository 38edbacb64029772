#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vorli::linuxhost {

/// What a block device has moved since it was made, in sectors of 512 bytes.
struct BlockTraffic {
  std::uint64_t sectorsRead = 0;
  std::uint64_t sectorsWritten = 0;

  bool operator==(const BlockTraffic&) const = default;
};

/// The numbers N of the devices /dev/zramN that /proc/swaps names, in its order.
std::vector<std::uint32_t> parseZramSwaps(std::string_view text);

/// Reads /sys/block/DEVICE/stat. Empty when it does not tell both.
std::optional<BlockTraffic> parseBlockTraffic(std::string_view text);

/// The memory in bytes that a compressed device takes, from /sys/block/zramN/mm_stat.
std::optional<std::uint64_t> parseZramMemoryUsed(std::string_view text);

}  // namespace vorli::linuxhost
