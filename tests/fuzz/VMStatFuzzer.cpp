#include "formats/VMStat.h"
#include "tests/fuzz/Fuzz.h"

void fuzz(std::string_view bytes) {
  const auto stat = vorli::formats::parseVMStat(bytes);
  if (bytes.find("pswpin ") == bytes.npos) FUZZ_CHECK(stat.swapIn == 0);
  if (bytes.find("zswpout ") == bytes.npos) FUZZ_CHECK(stat.zswapOut == 0);
}
