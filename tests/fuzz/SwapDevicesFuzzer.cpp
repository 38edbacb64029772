#include "linux/SwapDevices.h"
#include "tests/fuzz/Fuzz.h"

void fuzz(std::string_view bytes) {
  FUZZ_CHECK(vorli::linuxhost::parseZramSwaps(bytes).size() <= bytes.size() / 10);
  static_cast<void>(vorli::linuxhost::parseBlockTraffic(bytes));
  static_cast<void>(vorli::linuxhost::parseZramMemoryUsed(bytes));
}
