#pragma once

#include "base/Scheduler.h"
#include "ui/linux/ManagerSelections.h"
#include "ui/linux/StatusNotifierWatcher.h"

#include <functional>

namespace vorli::ui {

/// The kinds of tray that can show a status item.
enum class TrayKind {
  undecided,       // the session has not answered yet
  statusNotifier,  // a panel that speaks org.kde.StatusNotifierItem
  xembed,          // an X11 system tray
  none,
};

/// The better of the two trays that the session offers now.
TrayKind preferredTray(StatusNotifierWatcher::Presence watcher, bool hasXEmbedTray);

/// Follows which trays are available, and reports when the item has to move.
class TrayHost {
 public:
  /// A panel that starts or restarts may offer its X11 tray a moment before its StatusNotifier one.
  static constexpr double xembedDelaySeconds = 0.3;

  TrayHost(Scheduler& scheduler, StatusNotifierWatcher& watcher, ManagerSelections& selections,
           std::function<void(TrayKind)> moved);
  ~TrayHost();
  TrayHost(const TrayHost&) = delete;
  TrayHost& operator=(const TrayHost&) = delete;

  TrayKind kind() const { return kind_; }

  /// Chooses the tray again; called when the watcher or the selections have changed.
  void update();

 private:
  void moveTo(TrayKind kind);

  Scheduler& scheduler_;
  StatusNotifierWatcher& watcher_;
  ManagerSelections& selections_;
  std::function<void(TrayKind)> moved_;
  TrayKind kind_ = TrayKind::undecided;
  Scheduler::TimerId delayed_ = 0;
  Subscription subscription_;
};

}  // namespace vorli::ui
