#include "base/UTF8.h"
#include "formats/XMLScalars.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli;
using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  parseXMLInteger(bytes);
  parseXMLReal(bytes);
  const auto date = parseXMLDate(bytes);
  FUZZ_CHECK(!date || (bytes.size() == 20 && date->secondsSince1970 < 253402300800.0));  // 10000-01-01
  FUZZ_CHECK(decodeXMLData(bytes).size() <= bytes.size() / 4 * 3);

  auto rest = bytes;
  std::string text;
  while (takeXMLReference(rest, text)) FUZZ_CHECK(isWithin(rest, bytes) && isUTF8(text));
  FUZZ_CHECK(text.size() <= bytes.size() - rest.size());
}
