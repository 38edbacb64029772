#include "formats/DesktopLine.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  const auto line = splitDesktopLine(bytes);
  FUZZ_CHECK(line.group.empty() || (line.key.empty() && line.value.empty()));
  FUZZ_CHECK(line.group.size() + line.key.size() + line.value.size() <= bytes.size());
  FUZZ_CHECK(!line.key.starts_with('#') && !line.key.contains('='));

  FUZZ_CHECK(desktopText(bytes).size() <= bytes.size());
  std::size_t length = 0;
  for (const auto& text : desktopList(bytes)) {
    FUZZ_CHECK(!text.empty());
    length += text.size();
  }
  FUZZ_CHECK(length <= bytes.size());
}
