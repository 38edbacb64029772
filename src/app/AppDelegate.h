#pragma once

#include "ambient/ClearState.h"
#include "ambient/EdgeGlowController.h"
#include "ambient/PopoverView.h"
#include "app/AppSettings.h"
#include "app/PopoverHost.h"
#include "base/NotificationCenter.h"
#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "insights/SuspendedAppsManager.h"
#include "polish/QuietPolish.h"
#include "ports/ApplicationBundle.h"
#include "ports/ApplicationHost.h"
#include "ports/DesktopShell.h"
#include "ports/KeyValueStore.h"
#include "ports/PopoverWindow.h"
#include "ports/StatusItem.h"
#include "sampling/SystemMonitor.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vorli {

/// Posted when the application becomes the active one.
struct ApplicationDidBecomeActive {};

/// What the root object works with. The services stand in the order in which they are built.
struct AppDelegateNeeds {
  Scheduler& scheduler;
  NotificationCenter& notifications;
  ports::KeyValueStore& defaults;
  const ports::ApplicationBundle& bundle;
  ports::StatusItem& statusItem;
  ports::ApplicationHost& host;
  ports::DesktopShell& desktop;
  HelperManager& helperManager;
  SystemMonitor& systemMonitor;
  AppSettings& settings;
  SuspendedAppsManager& suspendedAppsManager;
  ClearState& clearState;
  QuietPolish& quietPolish;
  EdgeGlowController& edgeGlow;
  const PopoverServices& popoverServices;
  ports::PopoverWindow& popover;
  /// Puts the view into the panel.
  std::function<void(PopoverView&)> installContent;
};

/// The root object of the process: runs the launch sequence, holds the subscriptions that turn samples into
/// reactions, and answers clicks, menu rows and the question whether the process may end. Main thread.
class AppDelegate {
 public:
  enum class TerminateReply { now, later };

  explicit AppDelegate(const AppDelegateNeeds& needs);

  // The platform calls these.
  void applicationDidFinishLaunching();
  /// `later` while applications that stand stopped are resumed; the host is told when that is done.
  TerminateReply applicationShouldTerminate();
  void applicationWillTerminate();

  void handleStatusClick(const ports::StatusClick& click);
  void togglePopover();

  /// Purges memory and flushes the DNS cache, without ceremony, audio check or cooldown. Tells the user when
  /// the helper is not installed.
  void polishNow();

  void updateStatusIcon();

  /// The popover's content, from the end of the launch on.
  PopoverView* popoverView() { return popoverView_ ? &*popoverView_ : nullptr; }

 private:
  void createStatusItem();
  void subscribeToMonitorAndTheme();
  void subscribeToMemory();
  void subscribeToSettings();
  void applyEdgeGlow();
  void mountPopoverContent();
  std::vector<ports::MenuRow> contextMenu();
  void menuAbout();
  void showInfoAlert(const std::string& text);
  Task<> resumeSuspendedAppsAndQuit();

  Scheduler& scheduler_;
  NotificationCenter& notifications_;
  ports::KeyValueStore& defaults_;
  const ports::ApplicationBundle& bundle_;
  ports::StatusItem& statusItem_;
  ports::ApplicationHost& host_;
  ports::DesktopShell& desktop_;
  HelperManager& helperManager_;
  SystemMonitor& systemMonitor_;
  AppSettings& settings_;
  SuspendedAppsManager& suspendedAppsManager_;
  ClearState& clearState_;
  QuietPolish& quietPolish_;
  EdgeGlowController& edgeGlow_;
  PopoverServices popoverServices_;
  ports::PopoverWindow& popover_;
  std::function<void(PopoverView&)> installContent_;
  PopoverHost popoverHost_;
  std::optional<PopoverView> popoverView_;
  std::vector<Subscription> cancellables_;
  Subscription activation_;  // not among `cancellables_`: only the delegate's own end ends it
  TaskScope tasks_;
};

}  // namespace vorli
