#include "insights/IdleAppTracker.h"

#include "base/Logger.h"
#include "base/Sleep.h"
#include "insights/ProgramIdentifier.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <variant>

namespace vorli {

namespace {

constexpr Logger idleAppLog{logSubsystem, "idle-apps"};

constexpr const char* defaultsKey = "bundleLastActivation";
constexpr std::size_t maxEntries = 200;
constexpr double saveDelay = 30.0;

// Reads a stored date; a number counts as seconds since 1970.
std::optional<Date> dateFrom(const StoredEntry& entry) {
  if (const auto* date = std::get_if<Date>(&entry)) return *date;
  if (const auto* number = std::get_if<std::int64_t>(&entry)) return Date{static_cast<double>(*number)};
  const auto* number = std::get_if<double>(&entry);
  if (number && std::isfinite(*number)) return Date{*number};
  return std::nullopt;
}

void evictOldest(IdleAppTracker::ActivationMap& map) {
  if (map.size() <= maxEntries) return;
  std::vector<IdleAppTracker::ActivationMap::iterator> entries;
  for (auto entry = map.begin(); entry != map.end(); ++entry) entries.push_back(entry);
  std::ranges::stable_sort(entries, {}, [](const auto& entry) { return entry->second; });
  entries.resize(entries.size() - maxEntries);
  for (const auto& oldest : entries) map.erase(oldest);
}

}  // namespace

IdleAppTracker::IdleAppTracker(Scheduler& scheduler, const ports::CalendarClock& calendar,
                               ports::KeyValueStore& defaults, ports::Workspace& workspace)
    : scheduler_(scheduler),
      calendar_(calendar),
      defaults_(defaults),
      workspace_(workspace),
      tasks_(scheduler) {
  load();
  seed();
  for (const auto event : {ports::ApplicationEvent::activated, ports::ApplicationEvent::launched}) {
    observers_.push_back(
        workspace.subscribe(event, [this](const auto& application) { record(application); }));
  }
}

void IdleAppTracker::load() {
  const auto stored = defaults_.object(defaultsKey);
  const auto* dictionary = stored ? std::get_if<StoredDictionary>(&*stored) : nullptr;
  ActivationMap map;
  if (dictionary) {
    for (const auto& [identifier, entry] : *dictionary) {
      if (const auto date = dateFrom(entry)) map.emplace(identifier, *date);
    }
  }
  activationMap = std::move(map);
}

void IdleAppTracker::seed() {
  const Date now = calendar_.now();
  ActivationMap map = activationMap;
  bool added = false;
  for (const auto& application : workspace_.runningApplications()) {
    if (!application.bundleIdentifier) continue;
    added |= map.emplace(application.bundleIdentifier->view(), now).second;
  }
  if (added) publish(std::move(map));
}

void IdleAppTracker::record(const ports::RunningApplication& application) {
  if (!application.bundleIdentifier) return;
  ActivationMap map = activationMap;
  map.insert_or_assign(std::string(application.bundleIdentifier->view()), calendar_.now());
  publish(std::move(map));
}

void IdleAppTracker::publish(ActivationMap map) {
  evictOldest(map);
  activationMap = std::move(map);
  scheduleSave();
}

void IdleAppTracker::scheduleSave() {
  saveDebounce_.cancel();
  saveDebounce_ = tasks_.spawn(saveLater());
}

Task<> IdleAppTracker::saveLater() {
  const auto slept = co_await sleepFor(scheduler_, saveDelay);
  if (slept == SleepResult::cancelled) co_return;
  StoredDictionary dictionary;
  for (const auto& [identifier, date] : activationMap.get()) dictionary.emplace(identifier, date);
  defaults_.setObject(defaultsKey, std::move(dictionary));
}

std::vector<IdleApp> IdleAppTracker::idleApps(std::int64_t thresholdMinutes) {
  std::vector<IdleApp> idle;
  if (!seesActivations()) return idle;

  const Date cutoff = calendar_.now() + -60.0 * static_cast<double>(thresholdMinutes);
  const auto frontmost = workspace_.frontmostApplication();
  for (const auto& application : workspace_.runningApplications()) {
    const auto& identifier = application.bundleIdentifier;
    if (!identifier || *identifier == programIdentifier) continue;
    if (frontmost && frontmost->bundleIdentifier == identifier) continue;
    if (application.activationPolicy != ports::ActivationPolicy::regular) continue;
    const Date last = lastActivation(application).value_or(Date::distantPast());
    if (!(last < cutoff)) continue;

    auto& row = idle.emplace_back();
    row.id = row.pid = application.processIdentifier;
    row.bundleIdentifier = *identifier;
    row.displayName = application.localizedName.value_or(*identifier);
    if (!application.icon.name.empty()) row.icon = application.icon;
    row.lastActivated = last;
    row.idleFor = calendar_.now() - last;
  }
  std::ranges::stable_sort(idle, std::ranges::greater(), &IdleApp::idleFor);
  return idle;
}

bool IdleAppTracker::seesActivations() {
  if (workspace_.seesActivations()) {
    toldOfBlindness_ = false;
    return true;
  }
  if (!std::exchange(toldOfBlindness_, true)) {
    idleAppLog.log("windows cannot be seen here, no application counts as idle");
  }
  return false;
}

std::optional<Date> IdleAppTracker::lastActivation(const ports::RunningApplication& application) const {
  const auto entry = activationMap->find(application.bundleIdentifier->view());
  return entry == activationMap->end() ? application.launchDate : entry->second;
}

}  // namespace vorli
