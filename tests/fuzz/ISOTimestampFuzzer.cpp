#include "base/ISOTimestamp.h"
#include "tests/fuzz/Fuzz.h"

void fuzz(std::string_view bytes) {
  const auto date = vorli::parseISOTimestamp(bytes);
  if (!date) return;
  FUZZ_CHECK(bytes.size() == 24 || bytes.size() == 29);
  // A parsed time is written as the same text, unless its offset leads outside the years of four digits.
  const vorli::ISOTimestamp written(*date);
  if (bytes.size() == 24) FUZZ_CHECK(written.text() == bytes);
}
