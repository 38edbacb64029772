#pragma once

#include "base/Date.h"
#include "base/HostSystem.h"
#include "base/Scheduler.h"
#include "base/Task.h"
#include "base/TaskScope.h"
#include "base/UniqueFunction.h"
#include "helper/HelperManager.h"
#include "nudges/NudgeTexts.h"
#include "polish/QuietPolish.h"
#include "ports/CalendarClock.h"
#include "ports/KeyValueStore.h"
#include "ports/UserNotificationCenter.h"
#include "settings/AppSettings.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vorli {

/// Dependencies of the notifier.
struct NudgeNotifierNeeds {
  Scheduler& scheduler;
  const ports::CalendarClock& calendar;
  ports::KeyValueStore& defaults;
  ports::UserNotificationCenter& center;
  HelperManager& helperManager;
  AppSettings& settings;
  QuietPolish& quietPolish;
  const NudgeTexts& texts = ofThisSystem<NudgeTexts>();
};

/// Posts the program's two notices and performs the actions of their buttons: the gentle nudge when the ring
/// passes 90 %, and the notice about a helper that does not answer. Main thread.
class NudgeNotifier final : public ports::NotificationDelegate {
 public:
  static constexpr std::string_view categoryID = "VorliClearAction";
  static constexpr std::string_view actionID = "VorliClearNow";
  static constexpr double threshold = 0.9;
  static constexpr double cooldown = 1800.0;
  static constexpr std::string_view helperBrokenCategoryID = "VorliHelperBrokenAction";
  static constexpr std::string_view helperBrokenReinstallActionID = "VorliReinstallHelper";
  static constexpr std::string_view helperBrokenActionID = "VorliOpenLoginItems";
  static constexpr double helperBrokenCooldown = 86400.0;

  /// Registers the categories with the notification centre and becomes its delegate.
  explicit NudgeNotifier(const NudgeNotifierNeeds& needs);
  ~NudgeNotifier() override;
  NudgeNotifier(const NudgeNotifier&) = delete;
  NudgeNotifier& operator=(const NudgeNotifier&) = delete;

  /// Call on each update of the monitor; `progress` is that of the smoothed ring. Posts at most one nudge per
  /// crossing. Crossings are ignored while the setting is off or automatic polishes are on.
  void evaluate(const AppSettings& settings, double progress);

  /// Posts the notice about the helper, unless setup is incomplete or one was delivered within a day.
  void notifyHelperBroken();

  /// Asks for the permission to show notices; the answer goes to `handleAuthorization`.
  void requestAuthorization();
  /// A refusal switches the nudges off, so that the setting does not stay on without effect.
  void handleAuthorization(bool granted, const std::optional<std::string>& error);

  std::uint32_t presentationOptions() override;
  void didReceive(ports::NotificationResponse response, UniqueFunction<void()> completion) override;

 private:
  struct Life {};

  void postNudge();
  void helperBrokenPosted(const std::expected<void, std::string>& result);
  bool isHelperBrokenCoolingDown() const;
  Task<> respond(ports::NotificationResponse response, UniqueFunction<void()> completion);
  Task<> respondToHelperBroken(std::string action);

  const ports::CalendarClock& calendar_;
  ports::KeyValueStore& defaults_;
  ports::UserNotificationCenter& center_;
  HelperManager& helperManager_;
  AppSettings& settings_;
  QuietPolish& quietPolish_;
  const NudgeTexts& texts_;
  std::optional<Date> lastNotified_;
  bool aboveThreshold_ = false;
  std::shared_ptr<Life> life_ = std::make_shared<Life>();
  TaskScope tasks_;
};

}  // namespace vorli
