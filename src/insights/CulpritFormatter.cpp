#include "insights/CulpritFormatter.h"

#include "base/Assert.h"
#include "base/Logger.h"
#include "base/PercentEncoding.h"
#include "base/UnicodeText.h"
#include "insights/ApplicationName.h"

#include <algorithm>

namespace vorli {

namespace {

constexpr Logger culpritLog{logSubsystem, "culprits"};

constexpr std::size_t maxNames = 2;
constexpr std::string_view noApplication = "belongs to no application";

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
  if (names.empty()) {
    culpritLog.debug("nobody to name among %zu processes", processes.size());
    return std::nullopt;
  }
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
    auto name = resolve(process);
    if (!name) {
      culpritLog.debug("skipped %{public}s: %{public}s", process.name, name.error());
      continue;
    }
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
  auto name = resolve(process);
  return name ? std::optional(std::move(*name)) : std::nullopt;
}

CulpritFormatter::Naming CulpritFormatter::resolve(const ProcessSnapshot& process) const {
  if (systemProcesses_.contains(lowercased(process.name))) return std::unexpected("part of the system");
  return paths_.rules().kind == ApplicationPathRules::Kind::bundles ? nameOfBundle(process)
                                                                    : nameByRecords(process);
}

CulpritFormatter::Naming CulpritFormatter::nameOfBundle(const ProcessSnapshot& process) const {
  if (process.executablePath) {
    const auto bundle = paths_.bundleName(*process.executablePath);
    const auto name = bundle ? cleanedApplicationName(*bundle) : std::nullopt;
    if (name) return *name;
  }
  if (process.activationPolicy && isShown(*process.activationPolicy)) {
    if (auto name = cleanedApplicationName(process.displayName)) return *name;
  }
  if (process.bundleIdentifier) return runningName(*process.bundleIdentifier);
  return std::unexpected(noApplication);
}

// A program file proves little where several applications share it: two web applications over one browser, or
// two sandboxes with equal paths. The process's own record comes first, then its kinship, then its path.
CulpritFormatter::Naming CulpritFormatter::nameByRecords(const ProcessSnapshot& process) const {
  if (process.activationPolicy) {
    const ports::RunningApplication own{.localizedName = SharedText(process.displayName),
                                        .bundleIdentifier = process.bundleIdentifier,
                                        .activationPolicy = *process.activationPolicy};
    return shownName(&own);
  }
  if (const auto helped = workspace_.applicationHelpedBy(process.id)) {
    return shownName(workspace_.withProcessIdentifier(*helped));
  }
  return process.executablePath ? nameByPath(*process.executablePath) : std::unexpected(noApplication);
}

// The path leads to an application, which counts only if it is running: no other can have started the
// process.
CulpritFormatter::Naming CulpritFormatter::nameByPath(std::string_view executablePath) const {
  for (const auto place : paths_.namingPlaces(executablePath)) {
    const auto application = workspace_.applicationAt(place);
    if (!application) continue;
    if (!application->bundleIdentifier) return std::unexpected(noApplication);
    return runningName(*application->bundleIdentifier);
  }
  return std::unexpected(noApplication);
}

CulpritFormatter::Naming CulpritFormatter::runningName(std::string_view bundleIdentifier) const {
  return shownName(workspace_.firstWithIdentifier(bundleIdentifier));
}

CulpritFormatter::Naming CulpritFormatter::shownName(const ports::RunningApplication* application) const {
  if (!application) return std::unexpected("its application is not running");
  if (!isShown(application->activationPolicy)) return std::unexpected("its application is never shown");
  auto name = shownApplicationName(*application, paths_.rules().kind);
  return name ? Naming(std::move(*name)) : std::unexpected("its application has no name to show");
}

}  // namespace vorli
