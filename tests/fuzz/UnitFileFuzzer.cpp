#include "base/UTF8.h"
#include "formats/UnitFile.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  const auto unit = parseUnitFile(bytes);
  for (const auto* text : {&unit.description, &unit.program, &unit.triggered}) {
    FUZZ_CHECK(vorli::isUTF8(*text));
    FUZZ_CHECK(text->size() <= 3 * bytes.size());  // U+FFFD takes three bytes
  }
  const auto name = splitUnitName(bytes);
  if (!name) return;
  FUZZ_CHECK(isWithin(name->stem, bytes) && isWithin(name->suffix, bytes));
  FUZZ_CHECK(!name->stem.empty() && name->suffix.size() > 1);
  FUZZ_CHECK(!name->instance || isWithin(*name->instance, bytes));
}
