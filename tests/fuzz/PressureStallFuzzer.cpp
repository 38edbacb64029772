#include "formats/PressureStall.h"
#include "tests/fuzz/Fuzz.h"

void fuzz(std::string_view bytes) {
  const auto stall = vorli::formats::parsePressureStall(bytes);
  FUZZ_CHECK(stall.some.value_or(0.0) >= 0.0);
  FUZZ_CHECK(stall.full.value_or(0.0) >= 0.0);
}
