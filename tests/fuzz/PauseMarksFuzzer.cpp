#include "formats/DesktopEntry.h"
#include "formats/PauseMarks.h"
#include "tests/fuzz/Fuzz.h"

#include <cstdint>

using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  if (const auto restored = withoutPauseMarks(bytes)) {
    FUZZ_CHECK(hasPauseMarks(bytes));
    FUZZ_CHECK(restored->size() < bytes.size());
  }
  for (const auto firstSeen : {std::optional<std::int64_t>(), std::optional<std::int64_t>(1'700'000'000)}) {
    const auto marked = withPauseMarks(bytes, firstSeen);
    if (!marked) continue;
    FUZZ_CHECK(!hasPauseMarks(bytes) && hasPauseMarks(*marked));
    const auto entry = parseDesktopEntry(marked->substr(marked->starts_with("\xEF\xBB\xBF") ? 3 : 0), {});
    FUZZ_CHECK(entry && entry->hidden);
    FUZZ_CHECK(withoutPauseMarks(*marked) == bytes);
  }
}
