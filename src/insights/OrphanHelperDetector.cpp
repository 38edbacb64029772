#include "insights/OrphanHelperDetector.h"

#include <algorithm>

namespace vorli {

namespace {

constexpr std::int32_t firstProcess = 1;

}  // namespace

std::vector<OrphanHelper> OrphanHelperDetector::detect(const std::vector<ProcessSnapshot>& processes) const {
  std::vector<OrphanHelper> orphans;
  const auto adopters = findAdopters(processes);
  for (const auto& process : processes) {
    if (std::ranges::find(adopters, process.parentPID) == adopters.end()) continue;
    if (!process.executablePath) continue;
    const auto application = endedApplication(*process.executablePath);
    if (!application) continue;
    orphans.push_back({.id = process.id,
                       .pid = process.id,
                       .name = process.displayName,
                       .parentAppName = application->displayName,
                       .parentBundleID = application->bundleIdentifier,
                       .executablePath = *process.executablePath,
                       .residentBytes = process.residentBytes});
  }
  std::ranges::stable_sort(orphans, std::ranges::greater(), &OrphanHelper::residentBytes);
  return orphans;
}

std::vector<std::int32_t> OrphanHelperDetector::findAdopters(
    const std::vector<ProcessSnapshot>& processes) const {
  std::vector<std::int32_t> adopters{firstProcess};
  const auto names = paths_.rules().adopters;
  if (names.empty()) return adopters;
  for (const auto& process : processes) {
    if (std::ranges::find(names, process.name) != names.end()) adopters.push_back(process.id);
  }
  return adopters;
}

std::optional<ports::InstalledApplication> OrphanHelperDetector::endedApplication(
    std::string_view executablePath) const {
  if (paths_.isExcluded(executablePath)) return std::nullopt;
  auto application = enclosingApplication(executablePath);
  if (!application) return std::nullopt;
  const bool isAlive =
      application->bundleIdentifier && workspace_.firstWithIdentifier(*application->bundleIdentifier);
  if (isAlive || isApplicationItself(executablePath)) return std::nullopt;
  return application;
}

std::optional<ports::InstalledApplication> OrphanHelperDetector::enclosingApplication(
    std::string_view executablePath) const {
  for (const auto place : paths_.enclosingApplications(executablePath)) {
    if (auto application = workspace_.applicationAt(place)) return application;
  }
  return std::nullopt;
}

// Recognises the application's own program: on a system whose applications are folders, the workspace may not
// know a running application that has no window.
bool OrphanHelperDetector::isApplicationItself(std::string_view executablePath) const {
  return paths_.rules().kind == ApplicationPathRules::Kind::folders &&
         workspace_.applicationAt(executablePath).has_value();
}

}  // namespace vorli
