#include "diagnostics/CrashReportText.h"
#include "tests/fuzz/Fuzz.h"

void fuzz(std::string_view bytes) {
  for (const std::string_view heading : {"Summary", "Crash kind"}) {
    const auto value = vorli::sectionValue(bytes, heading);
    FUZZ_CHECK(!value || isWithin(*value, bytes));
  }
  for (const auto frame : vorli::stackFrames(bytes)) {
    FUZZ_CHECK(isWithin(frame, bytes) && frame.find('\n') == std::string_view::npos);
  }
  FUZZ_CHECK(vorli::crashSignature(bytes).size() == 16);
  vorli::dateFromFileName(bytes);
}
