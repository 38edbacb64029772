#pragma once

#include "app/LaunchSequence.h"
#include "app/Reactions.h"
#include "app/Services.h"
#include "base/TaskScope.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorli {

/// Posted when the application becomes the active one.
struct ApplicationDidBecomeActive {};

/// The root object of the process: takes the steps of the launch, handles clicks and menu rows, and decides
/// whether the process may terminate. Main thread.
class AppDelegate {
 public:
  enum class TerminateReply { now, later };

  explicit AppDelegate(Services& services);

  /// The steps of `applicationDidFinishLaunching`.
  LaunchSequence launchSequence();

  // The platform calls these.
  void applicationDidFinishLaunching();
  /// Returns `later` while stopped applications are being resumed; the host is notified when that is done.
  TerminateReply applicationShouldTerminate();
  void applicationWillTerminate();

  void handleStatusClick(const ports::StatusClick& click);
  void togglePopover();
  /// Shows the popover for a second start of the program or a launcher, or the first steps while they are
  /// unfinished; never closes either.
  void reopen();

  /// Purges memory and flushes the DNS cache, without animation, audio check or cooldown. Shows the user an
  /// alert when the helper is not installed.
  void polishNow();

  /// Shows what the helper needs, for a user who wants to allow it: in the first steps while they are
  /// unfinished, in the settings afterwards, and also in an alert where neither shows the error.
  void showHelperPage();

  /// Opens the settings on a tab, or on the one that was shown last.
  void showSettings(std::optional<VorliSettingsTab> tab);

  void updateStatusIcon();

  /// The popover's content; null until the launch has finished.
  PopoverView* popoverView() { return popoverView_ ? &*popoverView_ : nullptr; }

 private:
  struct Life {};

  void beginFirstSteps();
  void createStatusItem();
  bool isOnDarkPanel() const;
  void readHelperStatus();
  void startHelperLaunchTask();
  void observeActivation();
  void askForNotices();
  void registerHotkey(const std::string& combo);
  void applyEdgeGlow();
  void mountPopoverContent();
  void scheduleCrashReportCheck();
  Task<> offerCrashReports();
  enum class FirstSteps { shown, finished };
  FirstSteps showUnfinishedFirstSteps();
  std::vector<ports::MenuRow> contextMenu();
  void menuRestartFinder();
  void menuAbout();
  void showInfoAlert(const std::string& text);
  Task<> resumeSuspendedAppsAndQuit();

  Services& services_;
  const HostPorts& host_;
  std::optional<PopoverView> popoverView_;
  Reactions reactions_;
  Subscription activation_;  // not among the reactions: lives as long as the delegate
  std::shared_ptr<Life> life_ = std::make_shared<Life>();
  TaskScope tasks_;
};

}  // namespace vorli
