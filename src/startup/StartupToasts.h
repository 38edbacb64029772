#pragma once

#include "base/Published.h"
#include "base/Scheduler.h"
#include "base/Subscription.h"
#include "base/Task.h"
#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "ports/Announcements.h"
#include "startup/ItemActions.h"
#include "startup/StartupAppsTexts.h"
#include "startup/StartupItemService.h"

#include <optional>
#include <string>
#include <string_view>

namespace vorli {

/// The toast that offers to undo the last action. Its countdown starts when it is created, and has no effect
/// once the toast is destroyed. Main thread.
class UndoToastView {
 public:
  static constexpr double window = 6.0;  // seconds

  UndoToastView(UndoAction action, StartupItemService& service, Scheduler& scheduler,
                ports::Announcements& announcements);

  const UndoAction& action() const { return action_; }
  /// Fraction of the time that has passed.
  Published<double, UndoToastView> elapsed{0.0};
  /// Progress of the countdown ring, from 1 to 0.
  double countdownProgress() const { return 1.0 - elapsed; }

  static constexpr std::string_view symbol = "checkmark.circle.fill";
  /// Text before the item's name.
  std::string_view word() const;
  static constexpr std::string_view undoTitle = "Undo";
  std::string undoAccessibilityLabel() const;

  void undoPressed();

 private:
  Task<> countDown();

  const UndoAction action_;
  StartupItemService& service_;
  Scheduler& scheduler_;
  bool isTakenBack_ = false;  // the end of the countdown must not commit a removal whose undo is pending
  TaskScope tasks_;
};

/// The toast with the reason why an item could not be changed or quit. Main thread.
class HelperUnavailableToast {
 public:
  using Reason = HelperUnavailable::Reason;

  static constexpr double window = 7.0;  // seconds
  /// Seconds after which a password window that cannot be opened is known to be missing.
  static constexpr double passwordWindowOpens = 0.3;

  HelperUnavailableToast(HelperUnavailable state, StartupItemService& service, const HelperManager& helper,
                         Scheduler& scheduler, ports::Announcements& announcements,
                         const StartupAppsTexts& texts);

  const HelperUnavailable& state() const { return state_; }

  std::string_view symbol() const;
  /// Text before the item's name, which is emphasised. Empty where the text does not end with the name.
  std::string_view textBeforeName() const;
  std::string text() const;
  std::string announcement() const;
  std::string_view buttonTitle() const;
  std::string_view buttonAccessibilityLabel() const;
  std::string buttonAccessibilityHint() const;

 private:
  bool is(HelperUnavailable::Reason reason) const { return state_.reason == reason; }
  bool needsApproval() const { return is(Reason::notApproved) || is(Reason::declined); }
  /// Reason why the approval cannot be given; empty when none is known.
  std::optional<std::string> obstacle() const;
  Task<> passBy();
  Task<> announceWindow();

  const HelperUnavailable state_;
  StartupItemService& service_;
  const HelperManager& helper_;
  Scheduler& scheduler_;
  ports::Announcements& announcements_;
  const StartupAppsTexts& texts_;
  Subscription obstacleSubscription_;
  TaskScope tasks_;
};

}  // namespace vorli
