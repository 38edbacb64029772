#include "polish/QuietPolish.h"

namespace vorli {

namespace {

constexpr double cooldown = 300.0;

}  // namespace

QuietPolish::QuietPolish(Scheduler& scheduler, const ports::CalendarClock& calendar,
                         HelperManager& helperManager, SystemMonitor& systemMonitor, AppSettings& settings,
                         AudioActivityProbe& audio)
    : calendar_(calendar),
      helperManager_(helperManager),
      systemMonitor_(systemMonitor),
      settings_(settings),
      audio_(audio),
      tasks_(scheduler) {}

// The cooldown starts before the work, whether or not the work succeeds.
void QuietPolish::checkPressure(const MemorySnapshot& memory) {
  if (memory.pressureLevel == MemoryPressureLevel::normal) return;
  if (!settings_.autoClear() && !settings_.autoRefreshOnPressure()) return;
  if (isCoolingDown() || !isHelperEnabled()) return;

  settings_.setLastAutoRefresh(calendar_.now());
  tasks_.spawn(polish(audio_.isAudioActive() ? Purge::skipped : Purge::performed));
}

QuietPolish::Start QuietPolish::polishNow() {
  if (!isHelperEnabled()) return Start::helperNotInstalled;
  tasks_.spawn(polish(Purge::performed));
  return Start::started;
}

Task<> QuietPolish::polishFromNotification() {
  if (!isHelperEnabled()) co_return;
  co_await helperManager_.flushDNS();
  if (!audio_.isAudioActive()) co_await helperManager_.purgeMemory();
  systemMonitor_.refresh();
}

Task<> QuietPolish::polish(Purge purge) {
  co_await helperManager_.flushDNS();
  if (purge == Purge::performed) co_await helperManager_.purgeMemory();
  systemMonitor_.refresh();
}

bool QuietPolish::isHelperEnabled() const {
  return helperManager_.status.get() == InstallStatus::Case::enabled;
}

bool QuietPolish::isCoolingDown() const {
  const auto last = settings_.lastAutoRefresh();
  return last && calendar_.now() - *last < cooldown;
}

}  // namespace vorli
