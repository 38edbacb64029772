#include "startup/StartupSource.h"

#include "base/UnicodeText.h"

#include <algorithm>
#include <string_view>

namespace vorli {

namespace {

// Prefixes need no word boundary: every identifier that begins with one is hidden.
constexpr std::string_view hiddenPrefixes[] = {
    "com.apple.", "com.amazon.webservices.", "org.ssh-agent",
    "com.kv.vorli",  // the program's own helper and login item
};

}  // namespace

bool StartupSource::hides(const RawCandidate& candidate) const {
  const std::string identifier = lowercased(candidate.identifier);
  return std::ranges::any_of(hiddenPrefixes, [&](auto prefix) { return identifier.starts_with(prefix); });
}

}  // namespace vorli
