#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vorli::formats {

/// The lines of /proc/meminfo that are used, in bytes; 0 for a line that the kernel does not have.
struct MemInfo {
  std::uint64_t total = 0;
  std::uint64_t free = 0;
  std::optional<std::uint64_t> available;
  std::uint64_t active = 0;
  std::uint64_t inactive = 0;
  std::uint64_t unevictable = 0;
  std::uint64_t swapTotal = 0;
  std::uint64_t swapFree = 0;
  std::uint64_t zswap = 0;  // memory used by compressed pages
  std::uint64_t reclaimable = 0;
  std::uint64_t slabUnreclaimable = 0;
  std::uint64_t kernelStack = 0;
  std::uint64_t pageTables = 0;

  bool operator==(const MemInfo&) const = default;
};

/// Empty when the text lacks the total or the free memory.
std::optional<MemInfo> parseMemInfo(std::string_view text);

}  // namespace vorli::formats
