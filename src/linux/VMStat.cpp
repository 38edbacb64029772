#include "linux/VMStat.h"

#include "linux/KernelText.h"

namespace vorli::linuxhost {

namespace {

struct Key {
  std::string_view name;
  std::uint64_t VMStat::*field;
};

constexpr Key keys[] = {
    {"pgpgin", &VMStat::kibibytesIn}, {"pswpin", &VMStat::swapIn},    {"pswpout", &VMStat::swapOut},
    {"zswpin", &VMStat::zswapIn},     {"zswpout", &VMStat::zswapOut},
};

}  // namespace

VMStat parseVMStat(std::string_view text) {
  VMStat stat;
  while (!text.empty()) {
    auto line = takeLine(text);
    if (line.empty() || (line[0] != 'p' && line[0] != 'z')) continue;  // most of the 190 lines
    const auto name = line.substr(0, line.find(' '));
    for (const auto& key : keys) {
      if (key.name != name) continue;
      line.remove_prefix(name.size());
      stat.*key.field = parseWhole(trimmed(line)).value_or(0);
      break;
    }
  }
  return stat;
}

}  // namespace vorli::linuxhost
