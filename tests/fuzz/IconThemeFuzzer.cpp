#include "formats/IconTheme.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  const auto theme = parseIconTheme(bytes);
  FUZZ_CHECK(theme.inherits.size() <= 32 && theme.folders.size() <= 2048);
  for (const auto& name : theme.inherits) FUZZ_CHECK(!name.empty() && name.find('/') == name.npos);
  for (const auto& folder : theme.folders) {
    FUZZ_CHECK(!folder.path.empty() && folder.path.front() != '/' && folder.path.back() != '/');
    FUZZ_CHECK(("/" + folder.path + "/").find("/../") == std::string::npos);
    FUZZ_CHECK(folder.leastPixels >= 0 && folder.leastPixels <= folder.greatestPixels);
    FUZZ_CHECK(misfit(folder, 40) >= 0 && misfit(folder, folder.greatestPixels) == 0);
  }
}
