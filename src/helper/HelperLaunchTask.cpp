#include "helper/HelperLaunchTask.h"

#include "base/Sleep.h"
#include "helper/HelperTimings.h"
#include "settings/SetupRecord.h"
#include "settings/UserDefaults.h"

#include <string>

namespace vorli {

namespace {

constexpr const char* buildKey = "CFBundleVersion";

}  // namespace

bool buildChanged(const ports::ApplicationBundle& bundle, ports::KeyValueStore& defaults) {
  const std::string current = bundle.infoString(buildKey).value_or("");
  const std::string last = stringForKey(defaults, lastLaunchedBuildKey).value_or("");
  defaults.setObject(lastLaunchedBuildKey, current);
  return !last.empty() && last != current;
}

Task<> helperLaunchTask(Scheduler& scheduler, HelperManager& manager, Reinstall force,
                        UniqueFunction<void()> notifyHelperBroken) {
  co_await manager.reinstallIfStale(force, ports::AskedBy::program);
  bool alive = co_await manager.pingWithTimeout(HelperTimings::ping);
  if (alive) co_return;

  co_await sleepFor(scheduler, HelperTimings::launchRetry);
  co_await manager.reinstallIfStale(Reinstall::forced, ports::AskedBy::program);
  alive = co_await manager.pingWithTimeout(HelperTimings::ping);
  if (alive) co_return;

  notifyHelperBroken();
}

}  // namespace vorli
