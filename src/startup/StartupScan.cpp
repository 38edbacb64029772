#include "startup/StartupScan.h"

#include "startup/ItemClassifier.h"
#include "startup/UnitIdentifier.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

namespace vorli {

namespace {

constexpr double megabytesPerPercent = 10.0;

struct SortedItem {
  std::string nameKey;
  StartupItem* item;

  // The smallest key comes first. The identifier makes the order total.
  auto key() const {
    const double score = item->cpuPercent * megabytesPerPercent + item->memoryMB;
    return std::tuple(-static_cast<int>(item->footprint), -score, !item->isRunning, std::string_view(nameKey),
                      std::string_view(item->id));
  }
};

}  // namespace

StartupScan::StartupScan(const ScanPorts& ports, std::vector<StartupSource*> sources)
    : ports_(ports), sources_(std::move(sources)) {}

double StartupScan::prepare() const {
  return ports_.processes.prepareReading();
}

GatheredCandidates StartupScan::gather() const {
  ports_.applications.lookAgain();
  return gatherCandidates(sources_);
}

std::vector<StartupItem> StartupScan::classify(const GatheredCandidates& gathered,
                                               const std::vector<ports::RunningApplication>& running,
                                               Date lastVisit) const {
  ScanSurroundings surroundings;
  surroundings.lastVisit = lastVisit;
  const auto services = ports_.processes.services();
  surroundings.stats = statsByIdentifier(running, ports_.processes.processes(), services);
  for (const auto& application : running) {
    if (application.bundleIdentifier)
      surroundings.runningIdentifiers.emplace(application.bundleIdentifier->view());
  }
  for (const auto& service : services) {
    if (service.isUsers)
      surroundings.runningIdentifiers.insert(unitIdentifier(service.name, UnitManager::user));
  }

  ItemClassifier classifier(ports_.files, ports_.applications);
  std::vector<StartupItem> items;
  items.reserve(gathered.byIdentifier.size());
  for (const auto& [identifier, candidate] : gathered.byIdentifier)
    items.push_back(classifier.classify(candidate, surroundings));
  sortItems(items, ports_.textOrder);
  return items;
}

void sortItems(std::vector<StartupItem>& items, const ports::TextOrder& textOrder) {
  std::vector<SortedItem> sorted;
  sorted.reserve(items.size());
  for (auto& item : items) sorted.push_back({textOrder.sortKey(item.displayName), &item});
  std::ranges::sort(sorted, [](const auto& a, const auto& b) { return a.key() < b.key(); });
  std::vector<StartupItem> inOrder;
  inOrder.reserve(items.size());
  for (auto& each : sorted) inOrder.push_back(std::move(*each.item));
  items = std::move(inOrder);
}

}  // namespace vorli
