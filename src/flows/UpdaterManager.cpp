#include "flows/UpdaterManager.h"

#include "settings/SetupRecord.h"
#include "settings/UserDefaults.h"

#include <string_view>

namespace vorli {

namespace {

constexpr double checkInterval = 3600.0;
constexpr double firstCheckDelay = 10.0;

// True unless the source is missing or the placeholder of a build that is not configured.
bool vouches(const std::optional<std::string>& source) {
  constexpr std::string_view placeholder = "REPLACE_WITH";
  return source && !source->empty() && source->find(placeholder) == std::string::npos;
}

}  // namespace

UpdaterManager::UpdaterManager(const UpdaterManagerNeeds& needs)
    : scheduler_(needs.scheduler),
      calendar_(needs.calendar),
      defaults_(needs.defaults),
      framework_(needs.framework),
      warn_(needs.warn) {
  framework_.findSource(OnceReply<std::optional<std::string>>(
      [this, life = std::weak_ptr(life_)](const std::optional<std::string>& source) {
        if (life.lock() && vouches(source)) configure();
      }));
}

UpdaterManager::~UpdaterManager() {
  scheduler_.cancel(firstCheck_);
}

void UpdaterManager::configure() {
  updaterController_ = framework_.startUpdater(delegate_);
  updaterController_->setAutomaticallyChecksForUpdates(true);
  updaterController_->setUpdateCheckInterval(checkInterval);
  delegate_.onFinishedLoadingAppcast = [this] { finished(); };
  delegate_.onError = [this](const std::string& text) { failed(text); };
  firstCheck_ = scheduler_.after(firstCheckDelay, [this] { checkFirst(); });
  isConfigured = true;
}

// Skips the check while the onboarding is incomplete.
void UpdaterManager::checkFirst() {
  if (hasCompletedOnboarding(defaults_) && canCheckForUpdates())
    updaterController_->checkForUpdatesInBackground();
}

bool UpdaterManager::canCheckForUpdates() const {
  return updaterController_ && updaterController_->canCheckForUpdates();
}

void UpdaterManager::checkForUpdates() {
  if (updaterController_) updaterController_->checkForUpdates();
}

void UpdaterManager::finished() {
  lastUpdateError = std::nullopt;
  lastUpdateCheck = calendar_.now();
}

void UpdaterManager::failed(const std::string& text) {
  lastUpdateError = text;
  lastUpdateCheck = calendar_.now();
  warn_("Update check failed: " + text);
}

}  // namespace vorli
