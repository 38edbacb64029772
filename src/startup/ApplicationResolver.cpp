#include "startup/ApplicationResolver.h"

#include "base/FilePath.h"
#include "startup/CommandIdentifier.h"
#include "startup/ItemNames.h"

#include <string_view>
#include <vector>

namespace vorli {

std::optional<Resolved> ApplicationResolver::resolveApp(const RawCandidate& candidate) {
  if (candidate.programPath) {
    if (auto resolved = aroundProgram(*candidate.programPath)) return resolved;
  }
  const std::string identifier(withoutCommandEnding(candidate.identifier));
  if (auto resolved = withIdentifier(identifier)) return resolved;
  return withBeginningOf(identifier);
}

std::optional<Resolved> ApplicationResolver::read(const std::string& url) {
  const auto bundle = applications_.bundle(url);
  if (!bundle) return std::nullopt;
  const std::string stem(fileStem(url));
  const auto& name = bundle->bundleDisplayName ? bundle->bundleDisplayName : bundle->bundleName;
  return Resolved{url, bundle->bundleIdentifier.value_or(stem), name.value_or(stem)};
}

// Ignores relative paths, which would depend on the working directory of this process.
std::optional<Resolved> ApplicationResolver::aroundProgram(const std::string& programPath) {
  for (std::string_view path = programPath; hasTwoComponents(path); path = parentPath(path)) {
    if (pathExtension(path) != "app") continue;
    if (auto resolved = read(std::string(path))) return resolved;
  }
  return std::nullopt;
}

std::optional<Resolved> ApplicationResolver::withIdentifier(const std::string& identifier) {
  const auto url = applications_.urlForApplication(identifier);
  return url ? read(*url) : std::nullopt;
}

std::optional<Resolved> ApplicationResolver::withBeginningOf(const std::string& identifier) {
  std::vector<std::string> beginnings;
  for (const auto piece : identifierPieces(identifier)) {
    beginnings.push_back(beginnings.empty() ? std::string(piece)
                                            : beginnings.back() + "." + std::string(piece));
  }
  if (!beginnings.empty() && beginnings.back() == identifier) beginnings.pop_back();  // was looked up already
  while (beginnings.size() > 1) {
    if (auto resolved = withIdentifier(beginnings.back())) return resolved;
    beginnings.pop_back();
  }
  return std::nullopt;
}

}  // namespace vorli
