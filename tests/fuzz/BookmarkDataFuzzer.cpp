#include "base/UTF8.h"
#include "formats/BookmarkData.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli;
using namespace vorli::formats;

namespace {

bool isSound(const std::string& path) {
  const auto steps = path + "/";
  return path.starts_with('/') && isUTF8(path) && path.size() <= 8200 &&
         path.find('\0') == std::string::npos && steps.find("/../") == std::string::npos &&
         steps.find("/./") == std::string::npos && (path == "/" || steps.find("//") == std::string::npos);
}

}  // namespace

void fuzz(std::string_view bytes) {
  const auto bookmark = readBookmarkData(bytes);
  if (!bookmark) return;
  FUZZ_CHECK(isSound(bookmark->path) && isSound(bookmark->volume));
  FUZZ_CHECK(bookmark->path.starts_with(bookmark->volume));
}
