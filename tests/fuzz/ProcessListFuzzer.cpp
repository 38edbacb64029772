#include "base/UTF8.h"
#include "formats/ProcessList.h"
#include "tests/fuzz/Fuzz.h"

#include <cmath>

void fuzz(std::string_view bytes) {
  const auto rows = vorli::formats::parseProcessList(bytes);
  FUZZ_CHECK(rows.has_value() == vorli::isUTF8(bytes));
  if (!rows) return;
  FUZZ_CHECK(rows->size() <= bytes.size() / 5 + 1);  // the shortest row has three digits between two blanks
  for (const auto& row : *rows)
    FUZZ_CHECK(std::isfinite(row.cpuPercent) && std::isfinite(row.residentKibibytes));
}
