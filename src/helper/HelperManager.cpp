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
#include <utility>

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
                             ports::HelperTransport& transport, const ports::ApplicationBundle& bundle,
                             const HelperTexts& texts)
    : scheduler_(scheduler),
      service_(service),
      bundle_(bundle),
      texts_(texts),
      link_(std::make_shared<HelperLink>(scheduler, service, transport,
                                         [this](std::string text) { lastError = std::move(text); })),
      calls_(scheduler, link_),
      tasks_(scheduler) {
  service_.setChangeHandler([this] {
    hasReadStatus_ = true;
    refreshStatus();
  });
  service_.setFailureHandler([this](const std::string& text) {
    refreshStatus();  // comes first: a status that still says enabled takes errors back
    setApprovalObstacle(text);
    registrationFailed(text);
  });
  service_.setNoPromptHandler([this] { setLacksPrompt(true); });
}

HelperManager::~HelperManager() {
  service_.setChangeHandler(nullptr);
  service_.setFailureHandler(nullptr);
  service_.setNoPromptHandler(nullptr);
}

void HelperManager::refreshStatus() {
  status = InstallStatus::fromRawValue(service_.status());
  const bool isOther = isStatus(InstallStatus::Case::enabled) && service_.isOtherBuildRegistered();
  if (isOtherBuildInstalled != isOther) isOtherBuildInstalled = isOther;
  if (!isStatus(InstallStatus::Case::enabled)) return;
  lastError = std::nullopt;
  setLacksPrompt(false);
}

void HelperManager::setLacksPrompt(bool lacks) {
  if (lacksPrompt != lacks) lacksPrompt = lacks;
}

void HelperManager::setApprovalObstacle(std::optional<std::string> obstacle) {
  if (approvalObstacle.get() != obstacle) approvalObstacle = std::move(obstacle);
}

void HelperManager::forgetLastRequest() {
  setLacksPrompt(false);
  setApprovalObstacle(std::nullopt);
}

void HelperManager::openLoginItems() {
  forgetLastRequest();
  service_.openSystemSettingsLoginItems(AskedBy::user);
}

void HelperManager::askForStartupItemConsent() {
  forgetLastRequest();
  service_.askForStartupItemConsent(OnceReply<std::expected<void, std::string>>(
      [this, life = std::weak_ptr(life_)](const std::expected<void, std::string>& result) {
        if (life.lock() && !result) setApprovalObstacle(result.error());
      }));
}

std::string HelperManager::stateText() const {
  std::string text = "Background helper: " + status->description(texts_) + ".";
  if (const auto& error = lastError.get()) text += "\n\n" + *error;
  return text;
}

void HelperManager::registerDaemon(AskedBy asker) {
  const bool isInstalledProperly = isAppInApplicationsFolder(bundle_);
  helperLog.log("register() called. App bundle: %{public}s. App in /Applications: %{bool,public}d",
                bundle_.bundlePath(), isInstalledProperly);
  if (asker == AskedBy::user) forgetLastRequest();

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
    lastError = std::string(texts_.needsInstallation);
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
  co_await awaitFreshStatus(reinstallAskedBy_);
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

  co_await awaitFreshStatus(reinstallAskedBy_);
  refreshStatus();
  const bool alive = co_await pingWithTimeout(HelperTimings::ping);
  helperLog.log("Post-reinstall liveness: status=%{public}s alive=%{bool,public}d force=%{bool,public}d",
                status->description(texts_), alive, force == Reinstall::forced);
  if (!alive || isStatusBroken()) service_.openSystemSettingsLoginItems(reinstallAskedBy_);
  isInstalling = false;
}

Task<bool> HelperManager::needsReinstall() {
  const std::string installed = co_await versionWithTimeout(HelperTimings::version);
  const bool versionStale = installed != helper::version;
  const bool statusBroken = isStatusBroken();
  if (!versionStale && !statusBroken) {
    helperLog.log("Helper healthy at v%{public}s; no reinstall needed", installed);
    co_return false;
  }
  helperLog.log(
      "Helper needs reinstall: versionStale=%{bool,public}d statusBroken=%{bool,public}d "
      "installed=%{public}s expected=%{public}s status=%{public}s",
      versionStale, statusBroken, installed, helper::version, status->description(texts_));
  co_return true;
}

Task<> HelperManager::unregisterDaemon() {
  AwaitedReply<std::expected<void, std::string>> done(scheduler_);
  service_.unregisterDaemon(done.reply());
  const auto result = co_await done;
  if (!result) helperLog.error("Helper unregister failed: %{public}s", result.error());
}

// The system may answer late while it starts, and a status that was never read says nothing. A user does not
// wait for it.
Task<> HelperManager::awaitFreshStatus(AskedBy asker) {
  const bool isPatient = asker == AskedBy::program && !hasReadStatus_;
  DeadlineRace<int> race(scheduler_, isPatient ? HelperTimings::firstStatus : HelperTimings::freshStatus);
  service_.readStatus(race.reply());
  const auto status = co_await race;
  if (status) hasReadStatus_ = true;
}

bool HelperManager::isStatusBroken() const {
  return hasReadStatus_ && !isStatus(InstallStatus::Case::enabled);
}

Task<HelperReachability> HelperManager::ensureHelperAlive() {
  bool alive = co_await pingWithTimeout(HelperTimings::ping);
  if (alive) co_return co_await askForConsentIfMissing();

  co_await awaitFreshStatus(AskedBy::user);
  refreshStatus();
  if (isStatus(InstallStatus::Case::requiresApproval)) {
    openLoginItems();
    co_return HelperReachability::needsApproval;
  }

  co_await reinstallIfStale(Reinstall::forced);
  alive = co_await pingWithTimeout(HelperTimings::ping);
  if (alive) co_return co_await askForConsentIfMissing();

  co_await awaitFreshStatus(AskedBy::user);
  refreshStatus();
  co_return isStatus(InstallStatus::Case::requiresApproval) ? HelperReachability::needsApproval
                                                            : HelperReachability::unreachable;
}

// Some systems let a running daemon change startup items only with the user's consent. A service that does
// not answer does not block the action: the daemon checks again itself.
Task<HelperReachability> HelperManager::askForConsentIfMissing() {
  DeadlineRace<ports::Consent> race(scheduler_, HelperTimings::consent);
  service_.startupItemConsent(race.reply());
  const auto consent = co_await race;
  if (consent != ports::Consent::missing) co_return HelperReachability::reachable;

  refreshStatus();
  askForStartupItemConsent();
  co_return HelperReachability::needsApproval;
}

}  // namespace vorli
