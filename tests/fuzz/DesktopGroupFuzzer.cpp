#include "formats/DesktopGroup.h"
#include "formats/DesktopLine.h"
#include "tests/fuzz/Fuzz.h"

#include <algorithm>

using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  constexpr int mostKeys = 64;  // each is searched from the start
  FUZZ_CHECK(!valueInGroup(bytes, desktopEntryGroup, ""));
  std::string_view group;
  int keys = 0;
  for (auto rest = bytes; !rest.empty() && keys < mostKeys;) {
    const auto whole = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(whole.size() + 1, rest.size()));
    const auto line = splitDesktopLine(whole);
    if (!line.group.empty()) group = line.group;
    if (group.empty() || line.key.empty()) continue;
    ++keys;
    const auto value = valueInGroup(bytes, group, line.key);
    FUZZ_CHECK(value && isWithin(*value, bytes) && value->data() <= line.value.data());
  }
}
