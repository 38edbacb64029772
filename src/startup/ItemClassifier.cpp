#include "startup/ItemClassifier.h"

#include "startup/Catalog.h"
#include "startup/ItemNames.h"

#include <string_view>

namespace vorli {

namespace {

constexpr double heavyPercent = 5.0;
constexpr double heavyMegabytes = 400.0;
constexpr double mediumPercent = 1.0;
constexpr double mediumMegabytes = 150.0;

std::string nameBeforeCatalog(const RawCandidate& candidate, const std::optional<Resolved>& resolved) {
  if (resolved) return resolved->displayName;
  return candidate.displayNameHint ? *candidate.displayNameHint : prettyName(candidate.identifier);
}

ProcessStats statsOf(const StatsByIdentifier& stats, std::string_view bundleID, std::string_view identifier) {
  auto found = stats.find(bundleID);
  if (found == stats.end()) found = stats.find(identifier);
  return found == stats.end() ? ProcessStats() : found->second;
}

StartupItem::Timing timingOf(const RawCandidate& candidate, bool isRunning) {
  if (candidate.registersAtLogin) return StartupItem::Timing::startsWithMac;
  return isRunning ? StartupItem::Timing::runningNow : StartupItem::Timing::onDemand;
}

std::optional<std::string> runningIdentifier(const ScanSurroundings& surroundings,
                                             const std::string& bundleID, const std::string& identifier) {
  if (surroundings.runningIdentifiers.contains(bundleID)) return bundleID;
  if (surroundings.runningIdentifiers.contains(identifier)) return identifier;
  return std::nullopt;
}

}  // namespace

StartupItem::Footprint footprintOf(bool isRunning, bool isEnabled, double cpuPercent, double memoryMB) {
  using enum StartupItem::Footprint;
  if (!isRunning || !isEnabled) return light;
  if (cpuPercent >= heavyPercent || memoryMB >= heavyMegabytes) return heavy;
  if (memoryMB >= mediumMegabytes || cpuPercent >= mediumPercent) return medium;
  return light;
}

StartupItem ItemClassifier::classify(const RawCandidate& candidate, const ScanSurroundings& surroundings) {
  const auto resolved = resolver_.resolveApp(candidate);
  const std::string bundleID = resolved ? resolved->bundleID : candidate.identifier;
  const auto known = lookupCatalog(bundleID, candidate.identifier, nameBeforeCatalog(candidate, resolved));
  const auto stats = statsOf(surroundings.stats, bundleID, candidate.identifier);

  StartupItem item;
  item.id = candidate.identifier;
  item.bundleID = bundleID;
  item.displayName = known.displayName;
  item.description = known.description;
  item.requiresConfirmation = known.requiresConfirmation;
  if (resolved) item.appURL = resolved->appURL;
  item.plistURL = candidate.plistURL;
  item.isEnabled = candidate.isEnabled;
  item.isRunning = stats.running;
  item.cpuPercent = stats.cpu;
  item.memoryMB = stats.memoryMB;
  item.footprint = footprintOf(stats.running, candidate.isEnabled, stats.cpu, stats.memoryMB);
  item.isUserWritable = candidate.plistIsUserWritable && candidate.plistURL;
  item.timing = timingOf(candidate, stats.running);
  item.source = candidate.source;
  item.firstSeenAt = firstSeenAt(candidate);
  item.isLeftover = isLeftover(candidate, resolved);
  item.isNewSinceLastVisit = item.firstSeenAt && *item.firstSeenAt > surroundings.lastVisit;
  item.installerName = installerName(candidate, resolved);
  item.runningAppBundleID = runningIdentifier(surroundings, bundleID, candidate.identifier);
  return item;
}

// A paused item has no date, because its file has another name. On Linux a mask or a marked copy, which is
// newer than the item, may have taken the name.
std::optional<Date> ItemClassifier::firstSeenAt(const RawCandidate& candidate) {
  const bool mayBeReplaced = system_ == HostSystem::linuxDesktop && !candidate.isEnabled;
  if (!candidate.plistURL || mayBeReplaced) return std::nullopt;
  return files_.birthTime(*candidate.plistURL);
}

bool ItemClassifier::isLeftover(const RawCandidate& candidate, const std::optional<Resolved>& resolved) {
  if (resolved && files_.exists(resolved->appURL)) return false;
  const auto& program = candidate.programPath;
  return program && program->starts_with('/') && isMissing(*program);
}

// Many items start the same program.
bool ItemClassifier::isMissing(const std::string& program) {
  const auto [place, isFirst] = missing_.try_emplace(program);
  if (isFirst) place->second = files_.isMissing(program);
  return place->second;
}

}  // namespace vorli
