#include "formats/MemInfo.h"

#include "formats/KernelText.h"
#include "formats/KeyedLines.h"

namespace vorli::formats {

namespace {

std::optional<std::uint64_t> bytesOf(KeyedLines& lines, std::string_view key) {
  auto value = lines.valueOf(key);
  const auto kibibytes = value ? parseWhole(takeWord(*value)) : std::nullopt;
  std::uint64_t bytes = 0;
  if (!kibibytes || __builtin_mul_overflow(*kibibytes, 1024, &bytes)) return std::nullopt;
  return bytes;
}

}  // namespace

std::optional<MemInfo> parseMemInfo(std::string_view text) {
  KeyedLines lines(text);  // asked in the kernel's order
  const auto total = bytesOf(lines, "MemTotal:");
  const auto free = bytesOf(lines, "MemFree:");
  if (!total || *total == 0 || !free) return std::nullopt;
  MemInfo info{.total = *total, .free = *free, .available = bytesOf(lines, "MemAvailable:")};
  info.active = bytesOf(lines, "Active:").value_or(0);
  info.inactive = bytesOf(lines, "Inactive:").value_or(0);
  info.unevictable = bytesOf(lines, "Unevictable:").value_or(0);
  info.swapTotal = bytesOf(lines, "SwapTotal:").value_or(0);
  info.swapFree = bytesOf(lines, "SwapFree:").value_or(0);
  info.zswap = bytesOf(lines, "Zswap:").value_or(0);
  info.reclaimable = bytesOf(lines, "KReclaimable:").value_or(0);
  info.slabUnreclaimable = bytesOf(lines, "SUnreclaim:").value_or(0);
  info.kernelStack = bytesOf(lines, "KernelStack:").value_or(0);
  info.pageTables = bytesOf(lines, "PageTables:").value_or(0);
  return info;
}

}  // namespace vorli::formats
