#pragma once

#include "ambient/Notifications.h"
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

/// Dependencies of the popover's host.
struct PopoverHostNeeds {
  Scheduler& scheduler;
  NotificationCenter& notifications;
  ports::PopoverWindow& popover;
  ports::ApplicationHost& host;
  HelperManager& helperManager;
  SystemMonitor& systemMonitor;
};

/// Opens and closes the popover, which unfurls from a strip and rolls up into one. The monitor samples more
/// often while it is open. Main thread.
class PopoverHost {
 public:
  static constexpr double popoverCollapsedHeight = 24.0;
  /// Size until the content reports its own.
  static constexpr ports::PopoverSize mountedSize{270.0, 280.0};

  explicit PopoverHost(const PopoverHostNeeds& needs);

  /// Sets up the panel. Call once, before everything else.
  void createPopover();
  /// Starts to handle the content's notifications.
  void observeContent();

  void togglePopover();
  /// Opens the popover or brings it to the front; never closes it. One that is rolling up opens again once it
  /// has closed.
  void showPopover();

  // True between opening and the first size that the content reports; and while the panel rolls up.
  bool isUnfurlingNow() const { return isUnfurlingNow_; }
  bool isRollingUpNow() const { return isRollingUpNow_; }

 private:
  bool popoverShouldClose();
  void popoverDidShow();
  void closeIfShown();
  void removeEventMonitor();
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

  std::optional<Subscription> eventMonitor_;  // for clicks outside, while the popover is open
  bool allowImmediateClose_ = false;          // lets the next close pass
  bool isUnfurlingNow_ = false;
  bool isRollingUpNow_ = false;
  bool opensAfterRollUp_ = false;
  std::uint64_t openings_ = 0;
  Subscription closeSubscription_;
  Subscription sizeSubscription_;
  TaskScope tasks_;
};

}  // namespace vorli
