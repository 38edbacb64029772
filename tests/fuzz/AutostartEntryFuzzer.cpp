#include "base/UTF8.h"
#include "formats/AutostartEntry.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli;
using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  const auto entry = parseAutostartEntry(bytes, {"de_AT", "de"});
  FUZZ_CHECK(!entry.program.empty() || entry.arguments.empty());
  FUZZ_CHECK(isUTF8(entry.name) && entry.program.size() <= bytes.size());
  FUZZ_CHECK(!parseAutostartEntry(switchedOff(bytes)).startsIn({}));

  const auto on = switchedOn(bytes);
  FUZZ_CHECK(on.size() <= bytes.size());
  FUZZ_CHECK(switchedOn(on) == on);
  const auto again = parseAutostartEntry(on, {"de_AT", "de"});
  FUZZ_CHECK(again.program == entry.program && again.name == entry.name);
}
