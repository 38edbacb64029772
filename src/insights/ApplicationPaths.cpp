#include "insights/ApplicationPaths.h"

#include <algorithm>

namespace vorli {

namespace {

using Kind = ApplicationPathRules::Kind;

constexpr std::string_view bundleExtension = ".app";
constexpr std::string_view bundleInPath = ".app/";

std::string_view lastComponent(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

std::string_view withoutLastComponent(std::string_view path) {
  const auto slash = path.rfind('/');
  return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

// A name that consists of only ".app" is not a bundle.
bool isBundle(std::string_view path) {
  const auto name = lastComponent(path);
  return name.size() > bundleExtension.size() && name.ends_with(bundleExtension);
}

// Appends the folders around a program, innermost first, as long as they are longer than the first `prefix`
// characters.
void appendFolders(std::vector<std::string_view>& places, std::string_view path, std::size_t prefix) {
  for (auto folder = withoutLastComponent(path); folder.size() > prefix;
       folder = withoutLastComponent(folder)) {
    places.push_back(folder);
  }
}

}  // namespace

ApplicationPaths::ApplicationPaths(const std::string& home, const ApplicationPathRules& rules)
    : rules_(rules) {
  for (const auto prefix : rules.applicationsInHome) inHome_.push_back(home + std::string(prefix));
}

bool ApplicationPaths::isExcluded(std::string_view executablePath) const {
  return std::ranges::any_of(rules_.excludedPrefixes,
                             [=](auto prefix) { return executablePath.starts_with(prefix); }) ||
         std::ranges::any_of(rules_.excludedWords, [=](auto word) { return executablePath.contains(word); });
}

std::vector<std::string_view> ApplicationPaths::enclosingApplications(std::string_view executablePath) const {
  std::vector<std::string_view> places;
  const auto prefix = longestPrefix(executablePath, false);
  if (prefix == 0) return places;
  if (rules_.kind == Kind::folders) {
    appendFolders(places, executablePath, prefix);
    return places;
  }
  auto bundle = executablePath;
  while (!bundle.empty() && !isBundle(bundle)) bundle = withoutLastComponent(bundle);
  const bool isDirectlyInFolder = bundle.size() > prefix && bundle.rfind('/') == prefix - 1;
  if (isDirectlyInFolder) places.push_back(bundle);
  return places;
}

std::optional<std::string_view> ApplicationPaths::bundleName(std::string_view executablePath) const {
  if (rules_.kind != Kind::bundles || longestPrefix(executablePath, true) == 0) return std::nullopt;
  const auto end = executablePath.find(bundleInPath);
  if (end == std::string_view::npos) return std::nullopt;
  const auto name = lastComponent(executablePath.substr(0, end));
  return name.empty() ? std::nullopt : std::optional(name);
}

std::vector<std::string_view> ApplicationPaths::namingPlaces(std::string_view executablePath) const {
  std::vector<std::string_view> places;
  if (rules_.kind != Kind::folders) return places;
  places.push_back(executablePath);
  if (const auto prefix = longestPrefix(executablePath, true)) appendFolders(places, executablePath, prefix);
  return places;
}

std::size_t ApplicationPaths::longestPrefix(std::string_view path, bool withSystemApplications) const {
  std::size_t longest = 0;
  const auto look = [&](std::string_view prefix) {
    if (path.size() > prefix.size() && path.starts_with(prefix)) longest = std::max(longest, prefix.size());
  };
  for (const auto prefix : rules_.applications) look(prefix);
  for (const auto& prefix : inHome_) look(prefix);
  if (withSystemApplications) {
    for (const auto prefix : rules_.systemApplications) look(prefix);
  }
  return longest;
}

}  // namespace vorli
