#include "formats/SwapDevices.h"

#include "formats/KernelText.h"

#include <limits>

namespace vorli::formats {

namespace {

// Parses the word at `index`, counted from 0.
std::optional<std::uint64_t> numberAt(std::string_view text, int index) {
  for (int i = 0; i < index; ++i) takeWord(text);
  return parseWhole(takeWord(text));
}

}  // namespace

std::vector<std::uint32_t> parseZramSwaps(std::string_view text) {
  constexpr std::string_view prefix = "/dev/zram";
  std::vector<std::uint32_t> numbers;
  while (!text.empty()) {
    auto line = takeLine(text);
    const auto name = takeWord(line);
    if (!name.starts_with(prefix)) continue;
    const auto number = parseWhole(name.substr(prefix.size()));
    if (number && *number <= std::numeric_limits<std::uint32_t>::max()) {
      numbers.push_back(static_cast<std::uint32_t>(*number));
    }
  }
  return numbers;
}

std::optional<BlockTraffic> parseBlockTraffic(std::string_view text) {
  const auto read = numberAt(text, 2);
  const auto written = numberAt(text, 6);
  if (!read || !written) return std::nullopt;
  return BlockTraffic{*read, *written};
}

std::optional<std::uint64_t> parseZramMemoryUsed(std::string_view text) {
  return numberAt(text, 2);
}

}  // namespace vorli::formats
