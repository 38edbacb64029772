#include "linux/MemInfo.h"

#include "linux/KernelText.h"

namespace vorli::linuxhost {

namespace {

struct Key {
  std::string_view name;
  std::uint64_t MemInfo::*field;
};

constexpr Key keys[] = {
    {"MemTotal", &MemInfo::total},
    {"MemFree", &MemInfo::free},
    {"Active", &MemInfo::active},
    {"Inactive", &MemInfo::inactive},
    {"Unevictable", &MemInfo::unevictable},
    {"SwapTotal", &MemInfo::swapTotal},
    {"SwapFree", &MemInfo::swapFree},
    {"Zswap", &MemInfo::zswap},
    {"KReclaimable", &MemInfo::reclaimable},
    {"SUnreclaim", &MemInfo::slabUnreclaimable},
    {"KernelStack", &MemInfo::kernelStack},
    {"PageTables", &MemInfo::pageTables},
};

std::optional<std::uint64_t> parseKibibytes(std::string_view value) {
  const auto kibibytes = parseWhole(takeWord(value));
  std::uint64_t bytes = 0;
  if (!kibibytes || __builtin_mul_overflow(*kibibytes, 1024, &bytes)) return std::nullopt;
  return bytes;
}

}  // namespace

std::optional<MemInfo> parseMemInfo(std::string_view text) {
  MemInfo info;
  bool hasTotal = false;
  bool hasFree = false;
  while (!text.empty()) {
    const auto line = takeLine(text);
    const auto colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    const auto name = line.substr(0, colon);
    if (name == "MemAvailable") info.available = parseKibibytes(line.substr(colon + 1));
    for (const auto& key : keys) {
      if (key.name != name) continue;
      const auto bytes = parseKibibytes(line.substr(colon + 1));
      info.*key.field = bytes.value_or(0);
      if (key.field == &MemInfo::total) hasTotal = bytes && *bytes > 0;
      if (key.field == &MemInfo::free) hasFree = bytes.has_value();
      break;
    }
  }
  if (!hasTotal || !hasFree) return std::nullopt;
  return info;
}

}  // namespace vorli::linuxhost
