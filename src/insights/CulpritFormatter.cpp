#include "insights/CulpritFormatter.h"

#include "base/Assert.h"
#include "base/PercentEncoding.h"
#include "base/UnicodeText.h"
#include "insights/ApplicationName.h"

#include <algorithm>

namespace vorli {

namespace {

constexpr std::size_t maxNames = 2;

std::string link(const std::string& name) {
  return "[**" + name + "**](vorli-quit://" + percentEncoded(name, hostPunctuation) + ")";
}

bool isShown(ports::ActivationPolicy policy) {
  return policy == ports::ActivationPolicy::regular || policy == ports::ActivationPolicy::accessory;
}

}  // namespace

std::string joinedAsList(const std::vector<std::string>& items) {
  std::string list;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const bool isLast = i + 1 == items.size();
    if (i > 0) list += !isLast ? ", " : items.size() == 2 ? " and " : ", and ";
    list += items[i];
  }
  return list;
}

std::optional<CulpritFormatter::CulpritData> CulpritFormatter::culpritData(
    const std::vector<ProcessSnapshot>& processes, RingState state) const {
  if (state == RingState::healthy) return std::nullopt;
  auto names = rankedNames(processes);
  if (names.empty()) return std::nullopt;
  if (names.size() > maxNames) names.resize(maxNames);

  CulpritData data;
  std::vector<std::string> links;
  links.reserve(names.size());
  for (const auto& name : names) links.push_back(link(name));
  data.verb = names.size() == 1 ? "is" : "are";
  data.markdown = joinedAsList(links) + " " + data.verb + std::string(culpritSentenceEnd);
  data.names = std::move(names);
  return data;
}

std::vector<std::string> CulpritFormatter::rankedNames(const std::vector<ProcessSnapshot>& processes) const {
  struct Total {
    std::string name;
    std::uint64_t bytes;
  };
  std::vector<Total> totals;
  for (const auto& process : processes) {
    auto name = applicationName(process);
    if (!name) continue;
    const auto known = std::ranges::find(totals, *name, &Total::name);
    if (known == totals.end()) {
      totals.push_back({std::move(*name), process.residentBytes});
    } else {
      VORLI_ASSERT(!__builtin_add_overflow(known->bytes, process.residentBytes, &known->bytes));
    }
  }
  std::ranges::stable_sort(totals, std::ranges::greater(), &Total::bytes);
  std::vector<std::string> names;
  names.reserve(totals.size());
  for (auto& total : totals) names.push_back(std::move(total.name));
  return names;
}

std::optional<std::string> CulpritFormatter::applicationName(const ProcessSnapshot& process) const {
  if (systemProcesses_.contains(lowercased(process.name))) return std::nullopt;
  if (process.executablePath) {
    if (auto name = nameInPath(*process.executablePath)) return name;
  }
  if (process.activationPolicy && isShown(*process.activationPolicy)) {
    if (auto name = cleanedApplicationName(process.displayName)) return name;
  }
  return process.bundleIdentifier ? runningName(*process.bundleIdentifier) : std::nullopt;
}

// With bundles the path spells the name. Otherwise it leads to the application, and only one that runs can
// have put the process there.
std::optional<std::string> CulpritFormatter::nameInPath(std::string_view executablePath) const {
  if (const auto name = paths_.bundleName(executablePath)) return cleanedApplicationName(*name);
  for (const auto place : paths_.namingPlaces(executablePath)) {
    const auto application = workspace_.applicationAt(place);
    if (!application) continue;
    return application->bundleIdentifier ? runningName(*application->bundleIdentifier) : std::nullopt;
  }
  return std::nullopt;
}

std::optional<std::string> CulpritFormatter::runningName(std::string_view bundleIdentifier) const {
  const auto* application = workspace_.firstWithIdentifier(bundleIdentifier);
  if (!application || !isShown(application->activationPolicy)) return std::nullopt;
  return application->localizedName ? cleanedApplicationName(*application->localizedName) : std::nullopt;
}

}  // namespace vorli
