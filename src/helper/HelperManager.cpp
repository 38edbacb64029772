#include "helper/HelperManager.h"

#include "base/AwaitedReply.h"
#include "base/DeadlineRace.h"
#include "base/Sleep.h"
#include "helper/ApplicationsFolder.h"
#include "helper/HelperLog.h"
#include "helper/HelperTimings.h"

#include <algorithm>
#include <expected>
#include <string_view>

namespace vorli {

namespace {

char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool containsIgnoringCase(std::string_view text, std::string_view word) {
  const auto equal = [](char a, char b) { return lowered(a) == lowered(b); };
  return !std::ranges::search(text, word, equal).empty();
}

}  // namespace

HelperManager::HelperManager(Scheduler& scheduler, ports::HelperService& service,
                             ports::HelperTransport& transport, const ports::ApplicationBundle& bundle)
    : scheduler_(scheduler),
      service_(service),
      bundle_(bundle),
      link_(std::make_shared<HelperLink>(scheduler, service, transport, lastError)),
      calls_(scheduler, link_),
      tasks_(scheduler) {
  service_.setChangeHandler([this] { refreshStatus(); });
  service_.setFailureHandler([this](const std::string& text) {
    registrationFailed(text);
    refreshStatus();
  });
}

HelperManager::~HelperManager() {
  service_.setChangeHandler(nullptr);
  service_.setFailureHandler(nullptr);
}

void HelperManager::refreshStatus() {
  status = InstallStatus::fromRawValue(service_.status());
  if (isStatus(InstallStatus::Case::enabled)) lastError = std::nullopt;
}

void HelperManager::registerDaemon(AskedBy asker) {
  const bool isInstalledProperly = isAppInApplicationsFolder(bundle_);
  helperLog.log("register() called. App bundle: %{public}s. App in /Applications: %{bool,public}d",
                bundle_.bundlePath(), isInstalledProperly);

  if (const auto result = service_.registerDaemon(asker)) {
    lastError = std::nullopt;
    helperLog.log("service.register() succeeded");
  } else {
    registrationFailed(result.error());
  }
  refreshStatus();
}

void HelperManager::registrationFailed(const std::string& text) {
  helperLog.error("service.register() failed: %{public}s", text);
  if (containsIgnoringCase(text, "operation not permitted") && !isAppInApplicationsFolder(bundle_)) {
    lastError =
        "Vorli needs to live in your Applications folder. Drag Vorli there from the DMG, then reopen.";
  } else {
    lastError = "Couldn't set up the helper. " + text;
  }
}

Task<> HelperManager::reinstallIfStale(Reinstall force, AskedBy asker) {
  if (inFlightReinstall_.isRunning()) {
    helperLog.log("reinstallIfStale: waiting for in-flight reinstall");
    if (asker == AskedBy::user) reinstallAskedBy_ = asker;
    co_await inFlightReinstall_.finished();
    co_return;
  }
  reinstallAskedBy_ = asker;
  inFlightReinstall_ = tasks_.spawn(performReinstall(force));
  co_await inFlightReinstall_.finished();
}

Task<> HelperManager::performReinstall(Reinstall force) {
  co_await awaitFreshStatus();
  refreshStatus();
  if (isStatus(InstallStatus::Case::requiresApproval)) {
    helperLog.log("performReinstall: daemon awaiting approval; guiding to Settings, NOT re-registering");
    service_.openSystemSettingsLoginItems(reinstallAskedBy_);
    co_return;
  }

  if (force == Reinstall::forced) {
    helperLog.log("Forced helper reinstall requested");
  } else {
    const bool isNeeded = co_await needsReinstall();
    if (!isNeeded) co_return;
  }

  isInstalling = true;
  co_await unregisterDaemon();
  link_->close();
  co_await sleepFor(scheduler_, HelperTimings::registrationSettles);

  refreshStatus();
  registerDaemon(reinstallAskedBy_);
  co_await sleepFor(scheduler_, HelperTimings::registrationSettles);

  refreshStatus();
  const bool alive = co_await pingWithTimeout(HelperTimings::ping);
  helperLog.log("Post-reinstall liveness: status=%{public}s alive=%{bool,public}d force=%{bool,public}d",
                status->description(), alive, force == Reinstall::forced);
  if (!alive || !isStatus(InstallStatus::Case::enabled))
    service_.openSystemSettingsLoginItems(reinstallAskedBy_);
  isInstalling = false;
}

Task<bool> HelperManager::needsReinstall() {
  const std::string installed = co_await versionWithTimeout(HelperTimings::version);
  const bool versionStale = installed != helper::version;
  const bool statusBroken = !isStatus(InstallStatus::Case::enabled);
  if (!versionStale && !statusBroken) {
    helperLog.log("Helper healthy at v%{public}s; no reinstall needed", installed);
    co_return false;
  }
  helperLog.log(
      "Helper needs reinstall: versionStale=%{bool,public}d statusBroken=%{bool,public}d "
      "installed=%{public}s expected=%{public}s status=%{public}s",
      versionStale, statusBroken, installed, helper::version, status->description());
  co_return true;
}

Task<> HelperManager::unregisterDaemon() {
  AwaitedReply<std::expected<void, std::string>> done(scheduler_);
  service_.unregisterDaemon(done.reply());
  const auto result = co_await done;
  if (!result) helperLog.error("Helper unregister failed: %{public}s", result.error());
}

Task<> HelperManager::awaitFreshStatus() {
  DeadlineRace<int> race(scheduler_, HelperTimings::freshStatus);
  service_.readStatus(race.reply());
  co_await race;
}

Task<HelperReachability> HelperManager::ensureHelperAlive() {
  bool alive = co_await pingWithTimeout(HelperTimings::ping);
  if (alive) co_return co_await askForConsentIfMissing();

  refreshStatus();
  if (isStatus(InstallStatus::Case::requiresApproval)) {
    service_.openSystemSettingsLoginItems(AskedBy::user);
    co_return HelperReachability::needsApproval;
  }

  co_await reinstallIfStale(Reinstall::forced);
  alive = co_await pingWithTimeout(HelperTimings::ping);
  if (alive) co_return co_await askForConsentIfMissing();

  refreshStatus();
  co_return isStatus(InstallStatus::Case::requiresApproval) ? HelperReachability::needsApproval
                                                            : HelperReachability::unreachable;
}

// Some systems let a living daemon touch startup items only after the user has said so. A service that does
// not answer is no reason to hold the action back: the daemon asks again itself.
Task<HelperReachability> HelperManager::askForConsentIfMissing() {
  DeadlineRace<ports::Consent> race(scheduler_, HelperTimings::consent);
  service_.startupItemConsent(race.reply());
  const auto consent = co_await race;
  if (consent != ports::Consent::missing) co_return HelperReachability::reachable;

  refreshStatus();
  service_.openSystemSettingsLoginItems(AskedBy::user);
  co_return HelperReachability::needsApproval;
}

}  // namespace vorli
