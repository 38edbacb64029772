#pragma once

#include "base/Date.h"
#include "base/Published.h"
#include "base/Scheduler.h"
#include "base/Task.h"
#include "base/TaskScope.h"
#include "ports/CalendarClock.h"
#include "ports/KeyValueStore.h"
#include "ports/StartupSettings.h"
#include "ports/Workspace.h"
#include "startup/ItemActions.h"
#include "startup/StartupControl.h"
#include "startup/StartupItem.h"
#include "startup/StartupScan.h"
#include "startup/WorkQueue.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vorli {

/// Dependencies of the service.
struct StartupServices {
  Scheduler& scheduler;
  const ports::CalendarClock& calendar;
  ports::KeyValueStore& defaults;
  ports::Workspace& workspace;
  ports::StartupSettings& settings;
  const StartupScan& scan;
  const StartupControls& controls;
  WorkQueue& worker;
};

/// The model behind the list of startup items: scans, and acts on the items. An action shows its effect at
/// once; the scan that follows shows the actual result. Main thread.
class StartupItemService {
 public:
  using BTMStatus = vorli::BTMStatus;
  using UndoAction = vorli::UndoAction;
  using HelperUnavailable = vorli::HelperUnavailable;

  enum class CreateUndo { no, yes };

  /// Key of the date at which the list was last closed.
  static constexpr const char* lastVisitKey = "vorli.startup.lastSneakyVisitAt";

  explicit StartupItemService(const StartupServices& services);

  /// Items of the last scan, sorted; kept while the next scan runs.
  Published<std::vector<StartupItem>, StartupItemService> items;
  Published<int, StartupItemService> hiddenSystemCount{0};
  Published<bool, StartupItemService> isScanning{false};
  Published<BTMStatus, StartupItemService> btmStatus{btm_status::Unknown()};
  /// The last action, while it can be undone.
  Published<std::optional<UndoAction>, StartupItemService> pendingUndo;
  Published<std::optional<HelperUnavailable>, StartupItemService> helperUnavailable;

  /// Date of the last visit when the last scan was requested.
  Date lastVisitAtScanTime() const { return lastVisitAtScanTime_; }

  /// Starts a scan, even while one is running; the scan that ends last counts.
  void refresh();

  std::vector<StartupItem> leftoverItems() const;
  /// Enabled items whose description says that they update something.
  std::vector<StartupItem> updaterItems() const;

  /// Pauses or resumes. An item without a file belongs to the system: its settings are opened instead.
  void setEnabled(Enablement to, const StartupItem& item, CreateUndo createUndo);
  /// Removes the item; does nothing for an item without a file.
  void remove(const StartupItem& item, CreateUndo createUndo);
  /// Asks the running application to quit, or stops the user's service; the item stays as it is. Reports an
  /// application that cannot be asked.
  void quit(const StartupItem& item);

  void undoPause(const UndoAction& action);
  void undoRemove(const UndoAction& action);
  /// Permanently deletes what was removed.
  void commitRemoval(const UndoAction& action);

  /// Repeats the last action for which the user's consent was missing.
  void askAgain();

  /// Withdraws the offer to undo `action`, unless a later one has replaced it.
  void endUndo(const UndoAction& action);
  /// Clears `helperUnavailable`, unless a later state has replaced `shown`.
  void dismiss(const HelperUnavailable& shown);

  // These two cannot be undone.
  void pauseAllUpdaters();
  void removeAllLeftovers();

 private:
  struct ScanPass;

  Task<> scanEverything(Date lastVisit);
  Task<> switchItem(Enablement to, StartupItem item, CreateUndo createUndo);
  Task<> removeItem(StartupItem item, CreateUndo createUndo);
  Task<> bringBack(UndoAction action);
  Task<> deleteRemoved(std::string plistURL);
  Task<> quitService(StartupItem item);
  Task<> refreshAfterQuit();

  void inTurn(const std::string& itemID, Task<> action);
  static Task<> afterwards(TaskHandle earlier, Task<> action);
  void showAs(Enablement state, const std::string& itemID);
  void reportHelperUnavailable(HelperUnavailable::Reason reason, const std::string& itemID,
                               const std::string& displayName);
  void showHelperUnavailable(HelperUnavailable::Reason reason, const std::string& displayName);

  Scheduler& scheduler_;
  const ports::CalendarClock& calendar_;
  ports::KeyValueStore& defaults_;
  ports::Workspace& workspace_;
  ports::StartupSettings& settings_;
  const StartupScan& scan_;
  const StartupControls& controls_;
  WorkQueue& worker_;
  Date lastVisitAtScanTime_ = Date::distantPast();
  std::map<std::string, TaskHandle> lastActions_;  // by item
  std::function<void()> unapproved_;  // repeats the last action without consent; empty if there is none
  TaskScope tasks_;
};

}  // namespace vorli
