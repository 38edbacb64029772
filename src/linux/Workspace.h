#pragma once

#include "base/Scheduler.h"
#include "base/SubscriberList.h"
#include "linux/ApplicationMatcher.h"
#include "linux/DesktopEntryIndex.h"
#include "linux/PoliteQuit.h"
#include "linux/ProcessExit.h"
#include "linux/ProcessStart.h"
#include "linux/TrayIconOwners.h"
#include "linux/WindowList.h"
#include "ports/Workspace.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorli::linuxhost {

/// Running applications as a desktop shell sees them: processes with windows or tray icons, matched with
/// desktop entries once each. Everything after the start comes by events: windows from the X server, ends
/// from the kernel, icons and entries from bus and disk. A program without a desktop entry is no application.
class Workspace final : public ports::Workspace {
 public:
  explicit Workspace(Scheduler& scheduler,
                     DesktopEntryIndex::Places places = DesktopEntryIndex::Places::ofThisUser());
  ~Workspace() override;

  const std::vector<ports::RunningApplication>& runningApplications() override;
  std::optional<ports::RunningApplication> frontmostApplication() override;
  bool canSeeWindows() override { return windows_.canSeeWindows(); }
  std::optional<std::vector<std::int32_t>> onScreenWindowOwnerPIDs() override;
  bool terminate(std::int32_t processIdentifier) override;
  std::optional<ports::InstalledApplication> applicationAt(std::string_view path) override;
  Subscription subscribe(ports::ApplicationEvent event, ApplicationHandler handler) override;
  Subscription subscribeToSpaceChanges(std::function<void()> handler) override;

 private:
  enum class Showing { trayIcon, window };

  // What is known of a process that showed a window or an icon.
  struct Known {
    Showing showing = Showing::trayIcon;
    std::unique_ptr<ProcessExit> exit;
    std::string executable;
    std::int32_t applicationPID = 0;  // itself, the application that it helps, or 0 for neither
    std::string entryID;
    std::optional<ports::RunningApplication> application;
    std::uint32_t judgedByWindow = 0;  // the newest of its windows when it was matched
  };
  void windowsChanged();
  void meetWindowOwners();
  void activeWindowChanged();
  std::int32_t ownerOfActiveWindow() const;
  void meet(std::int32_t pid, Showing showing);
  void showsWindow(Known& known);
  void judge(std::int32_t pid, Known& known);
  std::uint32_t newestWindowOf(std::int32_t pid) const;
  void identify(std::int32_t pid, Known& known, const std::vector<DesktopWindow>& windows);
  std::int32_t applicationItHelps(std::int32_t pid, const std::string& executable) const;
  const DesktopEntry* entryRunning(std::string_view program) const;
  const DesktopEntry* entryRunningIn(std::string_view folder) const;
  ports::RunningApplication makeRecord(std::int32_t pid, const DesktopEntry& entry,
                                       const std::optional<ProcessStart>& start, Showing showing) const;
  void processEnded(std::int32_t pid);
  void entriesChanged();
  void changeSeen() { listIsStale_ = true; }
  void tell(ports::ApplicationEvent event, const ports::RunningApplication& application);
  std::vector<DesktopWindow> windowsOf(std::int32_t applicationPID) const;
  const Known* knownOwner(const DesktopWindow& window) const;

  Scheduler& scheduler_;
  DesktopEntryIndex entries_;
  WindowList windows_;
  ApplicationMatcher matcher_;  // after `entries_`, which it reads
  PoliteQuit politeQuit_;
  const std::uint64_t ownStart_;  // of this program, in the ticks of ProcessStart
  std::map<std::int32_t, Known> known_;
  std::vector<ports::RunningApplication> list_;
  bool listIsStale_ = true;
  std::int32_t frontmostPID_ = 0;
  std::map<ports::ApplicationEvent, SubscriberList<ports::RunningApplication>> events_;
  SubscriberList<> spaceChanges_;
  std::unique_ptr<TrayIconOwners> trayIcons_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace vorli::linuxhost
