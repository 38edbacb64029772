#include "helper/LaunchAtLoginManager.h"

#include "base/Logger.h"

namespace vorli {

namespace {

constexpr Logger loginItemLog{logSubsystem, "loginitem"};
constexpr int statusEnabled = 1;

}  // namespace

void LaunchAtLoginManager::syncFromSettings() {
  const bool setting = settings_.launchAtLogin();
  const bool system = item_.status() == statusEnabled;
  if (system == setting) return;
  loginItemLog.log("syncing login item: setting=%{bool,public}d system=%{bool,public}d", setting, system);
  apply(setting ? LoginItemWish::on : LoginItemWish::off);
}

void LaunchAtLoginManager::apply(LoginItemWish wish) {
  const auto result = wish == LoginItemWish::on ? item_.registerItem() : item_.unregisterItem();
  if (!result) loginItemLog.error("login item update failed: %{public}s", result.error());
}

}  // namespace vorli
