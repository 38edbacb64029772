#pragma once

#include "app/Notifications.h"
#include "base/NotificationCenter.h"
#include "base/Scheduler.h"
#include "base/Subscription.h"
#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "ports/ApplicationHost.h"
#include "ports/PopoverWindow.h"
#include "sampling/SystemMonitor.h"

#include <cstdint>
#include <optional>

namespace vorli {

/// What the popover's host works with.
struct PopoverHostNeeds {
  Scheduler& scheduler;
  NotificationCenter& notifications;
  ports::PopoverWindow& popover;
  ports::ApplicationHost& host;
  HelperManager& helperManager;
  SystemMonitor& systemMonitor;
};

/// Opens and closes the popover: it unfurls from a strip and rolls up into one, and the machine is looked at
/// more often while it is open. Main thread.
class PopoverHost {
 public:
  static constexpr double popoverCollapsedHeight = 24.0;
  /// Until the content reports what it wants.
  static constexpr ports::PopoverSize mountedSize{270.0, 280.0};

  explicit PopoverHost(const PopoverHostNeeds& needs);

  /// Takes the panel into use. Once, before everything else.
  void createPopover();
  /// Begins to follow what the content asks for by notifications.
  void observeContent();

  void togglePopover();

  // Between opening and the first size that the content reports; and while the panel rolls up.
  bool isUnfurlingNow() const { return isUnfurlingNow_; }
  bool isRollingUpNow() const { return isRollingUpNow_; }

 private:
  bool popoverShouldClose();
  void popoverDidShow();
  void closeIfShown();
  void removeEventMonitor();
  void setCadence(MonitorCadence cadence);
  Task<> takeFocus();
  Task<> close();
  Task<> rollUp();
  Task<> resize(VorliPopoverSize size);

  Scheduler& scheduler_;
  NotificationCenter& notifications_;
  ports::PopoverWindow& popover_;
  ports::ApplicationHost& host_;
  HelperManager& helperManager_;
  SystemMonitor& systemMonitor_;

  std::optional<Subscription> eventMonitor_;  // for presses outside, while the popover is open
  bool allowImmediateClose_ = false;          // lets one close pass
  bool isUnfurlingNow_ = false;
  bool isRollingUpNow_ = false;
  std::uint64_t openings_ = 0;
  Subscription closeSubscription_;
  Subscription sizeSubscription_;
  TaskScope tasks_;
};

}  // namespace vorli
