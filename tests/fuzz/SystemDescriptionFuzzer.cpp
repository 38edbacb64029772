#include "base/UTF8.h"
#include "linux/session/SystemDescription.h"
#include "tests/fuzz/Fuzz.h"

#include <string>

namespace {

bool isShortLine(const std::string& text) {
  // A byte that is not valid text becomes three bytes.
  return text.size() <= 600 && text.find('\n') == std::string::npos && vorli::isUTF8(text);
}

}  // namespace

void fuzz(std::string_view bytes) {
  using namespace vorli::linuxhost;
  FUZZ_CHECK(isShortLine(prettyName(bytes)));
  FUZZ_CHECK(isShortLine(productName(bytes).value_or("")));
  FUZZ_CHECK(isShortLine(processorModel(bytes).value_or("")));
}
