#include "formats/PowerProfile.h"
#include "tests/fuzz/Fuzz.h"

void fuzz(std::string_view bytes) {
  const auto profile = vorli::formats::parsePowerProfile(bytes);
  FUZZ_CHECK(isWithin(profile, bytes));
  FUZZ_CHECK(profile.find('\n') == profile.npos);
}
