#include "base/UTF8.h"
#include "formats/DesktopEntry.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli;
using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  const auto locales = localeKeys(bytes.substr(0, bytes.find('\n')));
  FUZZ_CHECK(locales.size() <= 4);

  std::size_t length = 0;
  for (const auto& word : splitExec(bytes)) length += word.size();
  FUZZ_CHECK(length <= bytes.size());

  const auto entry = parseDesktopEntry(bytes, locales);
  if (!entry) {
    FUZZ_CHECK(!entry.error().empty());
    return;
  }
  FUZZ_CHECK(entry->id.empty() && entry->path.empty());
  if (entry->hidden) {
    DesktopEntry nothingElse;
    nothingElse.hidden = true;
    FUZZ_CHECK(*entry == nothingElse);
    return;
  }
  FUZZ_CHECK(!entry->name.empty());
  FUZZ_CHECK(!entry->program.empty() || entry->arguments.empty());
  for (const auto* text : {&entry->name, &entry->icon, &entry->startupWMClass, &entry->flatpakID}) {
    FUZZ_CHECK(isUTF8(*text));
  }
}
