#include "insights/LeakyAppDetector.h"

#include "insights/ProgramIdentifier.h"

#include <algorithm>

namespace vorli {

namespace {

constexpr std::uint64_t sizeFloor = 4ULL * 1024 * 1024 * 1024;
constexpr double ageFloor = 6.0 * 60.0 * 60.0;

// Checks the size first, because few processes pass it.
bool isLeaky(const ProcessSnapshot& process) {
  return process.residentBytes >= sizeFloor && process.uptime >= ageFloor &&
         process.activationPolicy == ports::ActivationPolicy::regular &&
         process.bundleIdentifier != programIdentifier;
}

}  // namespace

std::vector<LeakyApp> LeakyAppDetector::detect(const std::vector<ProcessSnapshot>& processes) const {
  std::vector<LeakyApp> leaky;
  for (const auto& process : processes) {
    if (!isLeaky(process)) continue;
    const auto* application = process.id > 0 ? workspace_.withProcessIdentifier(process.id) : nullptr;
    leaky.push_back({.id = process.id,
                     .pid = process.id,
                     .displayName = process.displayName,
                     .bundleIdentifier = process.bundleIdentifier,
                     .bundleURL = application ? application->bundleURL : std::nullopt,
                     .residentBytes = process.residentBytes,
                     .uptime = process.uptime});
  }
  std::ranges::stable_sort(leaky, std::ranges::greater(), &LeakyApp::residentBytes);
  return leaky;
}

}  // namespace vorli
