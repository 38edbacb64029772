#include "formats/SwapDevices.h"
#include "tests/fuzz/Fuzz.h"

void fuzz(std::string_view bytes) {
  FUZZ_CHECK(vorli::formats::parseZramSwaps(bytes).size() <= bytes.size() / 10);
  static_cast<void>(vorli::formats::parseBlockTraffic(bytes));
  static_cast<void>(vorli::formats::parseZramMemoryUsed(bytes));
}
