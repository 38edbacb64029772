#include "startup/StartupItemService.h"

#include "base/Sleep.h"
#include "base/UnicodeText.h"
#include "settings/UserDefaults.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

namespace vorli {

// Data passed between the steps of a scan, which run on different threads but never at the same time.
struct StartupItemService::ScanPass {
  double beginsAfter = 0.0;  // seconds
  GatheredCandidates gathered;
  std::vector<ports::RunningApplication> running;
  std::vector<StartupItem> items;
};

namespace {

// Judges by the description that the user reads.
bool isUpdater(const StartupItem& item) {
  if (!item.isEnabled || item.isLeftover) return false;
  const std::string description = lowercased(item.description);
  return description.starts_with("updates ") || description.contains(" updater");
}

}  // namespace

StartupItemService::StartupItemService(const StartupServices& services)
    : scheduler_(services.scheduler),
      calendar_(services.calendar),
      defaults_(services.defaults),
      workspace_(services.workspace),
      settings_(services.settings),
      scan_(services.scan),
      controls_(services.controls),
      worker_(services.worker),
      tasks_(services.scheduler) {}

void StartupItemService::refresh() {
  isScanning = true;
  lastVisitAtScanTime_ = dateForKey(defaults_, lastVisitKey).value_or(Date::distantPast());
  tasks_.spawn(scanEverything(lastVisitAtScanTime_));
}

Task<> StartupItemService::scanEverything(Date lastVisit) {
  const auto pass = std::make_shared<ScanPass>();
  const auto gather = [&scan = scan_, pass] { pass->gathered = scan.gather(); };
  WorkQueue::Work begin = [&scan = scan_, pass, gather] {
    pass->beginsAfter = scan.prepare();
    if (pass->beginsAfter == 0.0) gather();
  };
  co_await worker_.run(std::move(begin));
  if (pass->beginsAfter > 0.0) {
    co_await sleepFor(scheduler_, pass->beginsAfter);
    co_await worker_.run(gather);
  }

  pass->running = workspace_.runningApplications();
  WorkQueue::Work classify = [&scan = scan_, pass, lastVisit] {
    pass->items = scan.classify(pass->gathered, pass->running, lastVisit);
  };
  co_await worker_.run(std::move(classify));

  const int itemCount = static_cast<int>(pass->items.size());
  items = std::move(pass->items);
  hiddenSystemCount = pass->gathered.hidden;
  btmStatus = btm_status::Loaded{itemCount};
  isScanning = false;
}

std::vector<StartupItem> StartupItemService::leftoverItems() const {
  std::vector<StartupItem> leftovers;
  std::ranges::copy_if(items.get(), std::back_inserter(leftovers), &StartupItem::isLeftover);
  return leftovers;
}

std::vector<StartupItem> StartupItemService::updaterItems() const {
  std::vector<StartupItem> updaters;
  std::ranges::copy_if(items.get(), std::back_inserter(updaters), isUpdater);
  return updaters;
}

}  // namespace vorli
