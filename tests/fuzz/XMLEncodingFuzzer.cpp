#include "base/UTF8.h"
#include "formats/XMLEncoding.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli;
using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  const auto text = decodeXML(bytes);
  FUZZ_CHECK(!text || (isUTF8(*text) && text->size() <= 2 * bytes.size()));
}
