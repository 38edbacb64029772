#include "formats/KernelRelease.h"
#include "formats/KernelText.h"
#include "formats/PowerProfile.h"
#include "tests/fuzz/Fuzz.h"

#include <cmath>

using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  for (std::string_view rest = bytes; !rest.empty();) {
    const auto before = rest.size();
    auto line = takeLine(rest);
    FUZZ_CHECK(rest.size() < before);
    FUZZ_CHECK(isWithin(line, bytes) && line.find('\n') == line.npos);
    while (!line.empty()) {
      const auto length = line.size();
      const auto word = takeWord(line);
      FUZZ_CHECK(line.size() < length);
      FUZZ_CHECK(word.find_first_of(" \t\n") == word.npos);
      const auto whole = parseWhole(word);
      const auto number = parseSigned(word);
      if (whole && number) FUZZ_CHECK(*whole == static_cast<std::uint64_t>(*number));
      const auto decimal = parseDecimal(word);
      if (decimal) FUZZ_CHECK(std::isfinite(*decimal) && *decimal >= 0.0 && *decimal < 1e15);
    }
  }
  FUZZ_CHECK(isWithin(parsePowerProfile(bytes), bytes));
  static_cast<void>(parseKernelRelease(bytes));
}
