#include "nudges/NudgeNotifier.h"

#include "base/Logger.h"
#include "base/UUID.h"
#include "settings/SetupRecord.h"
#include "settings/UserDefaults.h"

#include <utility>

namespace vorli {

namespace {

constexpr Logger nudgeLog{logSubsystem, "nudge"};

constexpr const char* helperBrokenKey = "vorli.helperBroken.lastNotifiedAt";

constexpr std::uint32_t foreground = 4;
constexpr std::uint32_t alertAndSound = 6;
constexpr std::uint32_t bannerAndSound = 18;

ports::NotificationAction action(std::string_view identifier, std::string_view title) {
  return {std::string(identifier), std::string(title), foreground};
}

}  // namespace

NudgeNotifier::NudgeNotifier(const NudgeNotifierNeeds& needs)
    : calendar_(needs.calendar),
      defaults_(needs.defaults),
      center_(needs.center),
      helperManager_(needs.helperManager),
      settings_(needs.settings),
      quietPolish_(needs.quietPolish),
      texts_(needs.texts),
      tasks_(needs.scheduler) {
  center_.setDelegate(this);
  center_.setNotificationCategories({{std::string(categoryID), {action(actionID, texts_.polishNow)}},
                                     {std::string(helperBrokenCategoryID),
                                      {action(helperBrokenReinstallActionID, texts_.reinstall),
                                       action(helperBrokenActionID, texts_.openSettings)}}});
}

NudgeNotifier::~NudgeNotifier() {
  center_.setDelegate(nullptr);
}

void NudgeNotifier::evaluate(const AppSettings& settings, double progress) {
  if (!settings.gentleNudges() || settings.autoClear()) return;
  if (progress < threshold) {
    if (aboveThreshold_) nudgeLog.log("dropped below threshold — armed for next crossing");
    aboveThreshold_ = false;
    return;
  }
  if (std::exchange(aboveThreshold_, true)) return;
  if (lastNotified_ && calendar_.now() - *lastNotified_ < cooldown) {
    nudgeLog.log("crossed 90%% but within cooldown — skipping");
    return;
  }
  postNudge();
}

// The cooldown begins with the attempt, so that a centre that refuses is not asked again at every crossing.
void NudgeNotifier::postNudge() {
  center_.add({.identifier = newUUID(),
               .title = std::string(texts_.nudgeTitle),
               .body = std::string(texts_.nudgeBody),
               .categoryIdentifier = std::string(categoryID)},
              OnceReply<std::expected<void, std::string>>([](const std::expected<void, std::string>& result) {
                if (!result) nudgeLog.error("post failed: %{public}s", result.error());
              }));
  lastNotified_ = calendar_.now();
  nudgeLog.log("posted nudge with Polish Now action");
}

void NudgeNotifier::notifyHelperBroken() {
  if (!hasCompletedOnboarding(defaults_)) {
    nudgeLog.debug("helper-broken notification skipped: onboarding not complete");
    return;
  }
  if (isHelperBrokenCoolingDown()) return;

  center_.add({.identifier = "vorli.helperBroken." + newUUID(),
               .title = std::string(texts_.helperBrokenTitle),
               .body = std::string(texts_.helperBrokenBody),
               .categoryIdentifier = std::string(helperBrokenCategoryID)},
              OnceReply<std::expected<void, std::string>>(
                  [this, life = std::weak_ptr(life_)](const std::expected<void, std::string>& result) {
                    if (life.lock()) helperBrokenPosted(result);
                  }));
}

bool NudgeNotifier::isHelperBrokenCoolingDown() const {
  const auto last = dateForKey(defaults_, helperBrokenKey);
  if (!last) return false;
  const double since = calendar_.now() - *last;
  if (since >= helperBrokenCooldown) return false;
  nudgeLog.debug("helper-broken notification skipped: within 24h cooldown (%{public}lds)",
                 static_cast<long>(since));
  return true;
}

// Unlike the nudge's cooldown, this one begins when a notice was delivered.
void NudgeNotifier::helperBrokenPosted(const std::expected<void, std::string>& result) {
  if (!result) {
    nudgeLog.error("helper-broken notification post failed: %{public}s", result.error());
    return;
  }
  defaults_.setObject(helperBrokenKey, calendar_.now());
  nudgeLog.log("posted helper-broken notification with Open Settings action");
}

void NudgeNotifier::requestAuthorization() {
  center_.requestAuthorization(
      alertAndSound, OnceReply<ports::NotificationAuthorization>(
                         [this, life = std::weak_ptr(life_)](const ports::NotificationAuthorization& answer) {
                           if (life.lock()) handleAuthorization(answer.granted, answer.error);
                         }));
}

void NudgeNotifier::handleAuthorization(bool granted, const std::optional<std::string>& error) {
  if (error) {
    nudgeLog.error("auth error: %{public}s", *error);
  } else {
    nudgeLog.log("auth granted=%{bool,public}d", granted);
  }
  if (!granted) settings_.gentleNudges.set(false);
}

std::uint32_t NudgeNotifier::presentationOptions() {
  return bannerAndSound;
}

void NudgeNotifier::didReceive(ports::NotificationResponse response, UniqueFunction<void()> completion) {
  tasks_.spawn(respond(std::move(response), std::move(completion)));
}

Task<> NudgeNotifier::respond(ports::NotificationResponse response, UniqueFunction<void()> completion) {
  const auto& action = response.actionIdentifier;
  if (response.categoryIdentifier == helperBrokenCategoryID) {
    co_await respondToHelperBroken(action);
  } else if (action == actionID || action == ports::notificationDefaultActionIdentifier) {
    co_await quietPolish_.polishFromNotification();
  }
  completion();
}

Task<> NudgeNotifier::respondToHelperBroken(std::string action) {
  if (action == helperBrokenReinstallActionID) {
    co_await helperManager_.reinstallIfStale(Reinstall::forced);
  } else {
    helperManager_.openLoginItems();
  }
}

}  // namespace vorli
