#include "formats/VMStat.h"

#include "base/Blanks.h"
#include "formats/KernelText.h"
#include "formats/KeyedLines.h"

namespace vorli::formats {

namespace {

std::uint64_t countOf(KeyedLines& lines, std::string_view key) {
  const auto value = lines.valueOf(key);
  return value ? parseWhole(withoutBlanks(*value)).value_or(0) : 0;
}

}  // namespace

VMStat parseVMStat(std::string_view text) {
  KeyedLines lines(text);  // asked in the kernel's order
  VMStat stat;
  stat.kibibytesIn = countOf(lines, "pgpgin ");
  stat.swapIn = countOf(lines, "pswpin ");
  stat.swapOut = countOf(lines, "pswpout ");
  stat.zswapIn = countOf(lines, "zswpin ");
  stat.zswapOut = countOf(lines, "zswpout ");
  return stat;
}

}  // namespace vorli::formats
