#include "formats/MemInfo.h"
#include "tests/fuzz/Fuzz.h"

void fuzz(std::string_view bytes) {
  const auto info = vorli::formats::parseMemInfo(bytes);
  if (!info) return;
  FUZZ_CHECK(info->total > 0);
  FUZZ_CHECK(info->total % 1024 == 0 && info->free % 1024 == 0 && info->swapTotal % 1024 == 0);
}
