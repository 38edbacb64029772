#include "formats/KernelRelease.h"
#include "tests/fuzz/Fuzz.h"

#include <string>

using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  const auto release = parseKernelRelease(bytes);
  if (!release) return;
  const auto text = std::to_string(release->major) + "." + std::to_string(release->minor);
  FUZZ_CHECK(parseKernelRelease(text) == release);
}
