#include "linux/VMStat.h"

#include "linux/KernelText.h"

namespace vorli::linuxhost {

namespace {

struct Key {
  std::string_view start;
  std::uint64_t VMStat::*field;
};

constexpr Key keys[] = {
    {"pgpgin ", &VMStat::kibibytesIn}, {"pswpin ", &VMStat::swapIn},    {"pswpout ", &VMStat::swapOut},
    {"zswpin ", &VMStat::zswapIn},     {"zswpout ", &VMStat::zswapOut},
};

}  // namespace

VMStat parseVMStat(std::string_view text) {
  VMStat stat;
  while (!text.empty()) {
    auto line = takeLine(text);
    if (line.size() < 3 || (line[2] != 'p' && line[2] != 'w')) continue;  // most of the 190 lines
    for (const auto& key : keys) {
      if (!line.starts_with(key.start)) continue;
      line.remove_prefix(key.start.size());
      stat.*key.field = parseWhole(trimmed(line)).value_or(0);
      break;
    }
  }
  return stat;
}

}  // namespace vorli::linuxhost
