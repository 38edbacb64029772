#include "formats/StoredValueText.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli;
using namespace vorli::formats;

namespace {

// A parsed value is written and parsed again as the same value.
void check(const std::vector<std::string>& texts) {
  const auto value = parseStoredTexts(texts);
  if (!value) return;
  const auto settled = parseStoredTexts(storedTexts(*value));  // a date keeps its microseconds and no more
  FUZZ_CHECK(settled && settled->index() == value->index());
  FUZZ_CHECK(parseStoredTexts(storedTexts(*settled)) == settled);
}

}  // namespace

/// Reads the bytes once as a text, and once as a list of texts, one on each line.
void fuzz(std::string_view bytes) {
  check({std::string(bytes)});
  std::vector<std::string> lines{""};
  for (const char c : bytes) {
    if (c == '\n') {
      lines.emplace_back();
    } else {
      lines.back() += c;
    }
  }
  check(lines);
}
