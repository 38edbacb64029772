#include "linux/session/StoredValueText.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli::linuxhost;

namespace {

// A parsed value is written and parsed again as the same value.
void check(const QVariant& stored) {
  const auto value = fromIni(stored);
  if (!value) return;
  const auto settled = fromIni(toIni(*value));  // a date keeps its microseconds and no more
  FUZZ_CHECK(settled && settled->index() == value->index());
  FUZZ_CHECK(fromIni(toIni(*settled)) == settled);
}

}  // namespace

/// Reads the bytes once as a text, and once as a list of texts, one on each line.
void fuzz(std::string_view bytes) {
  const auto text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
  check(text);
  check(text.split(QLatin1Char('\n')));
}
