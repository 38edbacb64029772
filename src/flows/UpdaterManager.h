#pragma once

#include "base/Date.h"
#include "base/Published.h"
#include "base/Scheduler.h"
#include "flows/UpdaterDelegateCoordinator.h"
#include "ports/CalendarClock.h"
#include "ports/KeyValueStore.h"
#include "ports/UpdateFramework.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vorli {

/// Dependencies of the manager.
struct UpdaterManagerNeeds {
  Scheduler& scheduler;
  const ports::CalendarClock& calendar;
  const ports::KeyValueStore& defaults;
  ports::UpdateFramework& framework;
  /// Writes a line of level WARN into the diagnostics log.
  std::function<void(const std::string&)> warn;
};

/// Checks for updates if this build can be updated, and keeps the result of the last check. Main thread.
class UpdaterManager {
 public:
  explicit UpdaterManager(const UpdaterManagerNeeds& needs);
  ~UpdaterManager();
  UpdaterManager(const UpdaterManager&) = delete;
  UpdaterManager& operator=(const UpdaterManager&) = delete;

  /// True when this build can be updated; false until the system has reported what authenticates its updates.
  Published<bool, UpdaterManager> isConfigured{false};
  /// Text for the user; empty when the last check succeeded.
  Published<std::optional<std::string>, UpdaterManager> lastUpdateError;
  /// Date of the end of the last check, whether it failed or not.
  Published<std::optional<Date>, UpdaterManager> lastUpdateCheck;

  bool canCheckForUpdates() const;
  /// Checks at the user's request. Does nothing when updates are not configured.
  void checkForUpdates();

 private:
  struct Life {};

  void configure();
  void checkFirst();
  void finished();
  void failed(const std::string& text);

  Scheduler& scheduler_;
  const ports::CalendarClock& calendar_;
  const ports::KeyValueStore& defaults_;
  ports::UpdateFramework& framework_;
  std::function<void(const std::string&)> warn_;
  UpdaterDelegateCoordinator delegate_;                // before `updaterController_`: outlives it
  std::unique_ptr<ports::Updater> updaterController_;  // only when updates are configured
  Scheduler::TimerId firstCheck_ = 0;
  std::shared_ptr<Life> life_ = std::make_shared<Life>();
};

}  // namespace vorli
