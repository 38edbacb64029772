#include "formats/PressureStall.h"

#include "formats/KernelText.h"

namespace vorli::formats {

PressureStall parsePressureStall(std::string_view text) {
  constexpr std::string_view tenSeconds = "avg10=";
  PressureStall stall;
  while (!text.empty()) {
    auto line = takeLine(text);
    const auto kind = takeWord(line);
    const auto average = takeWord(line);
    if (!average.starts_with(tenSeconds)) continue;
    const auto percent = parseDecimal(average.substr(tenSeconds.size()));
    if (kind == "some") stall.some = percent;
    if (kind == "full") stall.full = percent;
  }
  return stall;
}

}  // namespace vorli::formats
