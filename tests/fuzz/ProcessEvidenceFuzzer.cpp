#include "formats/ProcessEvidence.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  const auto flatpak = flatpakIDFromInfo(bytes);
  FUZZ_CHECK(flatpak.size() <= bytes.size() && flatpak.find('\n') == flatpak.npos);

  const auto evidence = evidenceFromCgroup(bytes);
  FUZZ_CHECK(evidence.ids.empty() == (evidence.kind == CgroupEvidence::Kind::none));
  for (const auto& id : evidence.ids) FUZZ_CHECK(id.size() <= bytes.size());

  const auto file = launchedDesktopFile(bytes, 42);
  FUZZ_CHECK(file.find('\0') == file.npos);
  FUZZ_CHECK(file.empty() || bytes.find("GIO_LAUNCHED_DESKTOP_FILE_PID=42") != bytes.npos);

  std::string joined;
  for (const auto& word : commandLineWords(bytes)) {
    FUZZ_CHECK(word.find('\0') == word.npos);
    joined += word + '\0';
  }
  FUZZ_CHECK(joined ==
             std::string(bytes) + (bytes.empty() || bytes.ends_with('\0') ? "" : std::string(1, '\0')));
}
