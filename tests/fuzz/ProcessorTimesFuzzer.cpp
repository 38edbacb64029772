#include "formats/ProcessorTimes.h"
#include "tests/fuzz/Fuzz.h"

void fuzz(std::string_view bytes) {
  static_cast<void>(vorli::formats::parseProcessorTimes(bytes));
  if (const auto count = vorli::formats::parseProcessorCount(bytes))
    FUZZ_CHECK(*count >= 1 && *count <= 1 << 20);
  if (const auto uptime = vorli::formats::parseUptime(bytes)) FUZZ_CHECK(*uptime >= 0.0 && *uptime < 1e15);
}
