#pragma once

#include "base/Scheduler.h"
#include "base/SubscriberList.h"
#include "linux/applications/ApplicationMatcher.h"
#include "linux/applications/DesktopEntryIndex.h"
#include "linux/applications/EmbeddedIconOwners.h"
#include "linux/applications/PoliteQuit.h"
#include "linux/applications/ProcessExit.h"
#include "linux/applications/ProcessFamily.h"
#include "linux/applications/SessionApplications.h"
#include "linux/applications/SessionWindows.h"
#include "linux/applications/TrayIconOwners.h"
#include "ports/Workspace.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vorli::linuxhost {

/// Running applications as a desktop shell sees them: processes with windows or tray icons, each matched with
/// a desktop entry. In a Wayland session windows may be hidden from other programs, so the processes that the
/// session has started as applications count as well, and those that own an application's name on the session
/// bus or are connected to the compositor. After the start, changes arrive as events: windows from the X
/// server and the compositor, icons from the X server and the bus, names from the bus, exits and units from
/// the kernel, entries from the disk. Only the compositor's clients are searched for: when the list is read,
/// and when a window opens whose owner the compositor does not name. A program without a desktop entry is an
/// application once it shows a window; it has the name that its windows give it, and no identifier.
class Workspace final : public ports::Workspace {
 public:
  explicit Workspace(Scheduler& scheduler,
                     DesktopEntryIndex::Places places = DesktopEntryIndex::Places::ofThisUser());
  ~Workspace() override;

  const std::vector<ports::RunningApplication>& runningApplications() override;
  std::optional<ports::RunningApplication> frontmostApplication() override;
  bool seesActivations() override { return windows_.seesEveryWindow(); }
  bool seesEveryWindow() override { return windows_.seesEveryWindow(); }
  std::optional<std::vector<std::int32_t>> onScreenWindowOwnerPIDs() override;
  ports::QuitAnswer terminate(std::int32_t processIdentifier) override;
  ports::QuitAnswer answerToTerminate(std::int32_t processIdentifier) override;
  std::optional<std::int32_t> applicationHelpedBy(std::int32_t processIdentifier) override;
  std::optional<ports::InstalledApplication> applicationAt(std::string_view path) override;
  Subscription subscribe(ports::ApplicationEvent event, ApplicationHandler handler) override;
  Subscription subscribeToSpaceChanges(std::function<void()> handler) override;

  /// Whether the process, or one that works for it, has windows other than panels and the desktop itself;
  /// empty where windows cannot be seen.
  std::optional<bool> hasWindows(std::int32_t pid);

 private:
  // Evidence that a process is an application. Where windows cannot be seen, being started as one is enough.
  enum class Sign { trayIcon, started, window };

  // A process with a sign of being an application.
  struct Known {
    std::set<Sign> signs;
    std::unique_ptr<ProcessExit> exit;
    std::string executable;
    std::int32_t applicationPID = 0;  // itself, the application that it helps, or 0 for neither
    std::string entryID;              // empty for an application without an entry
    std::string busID;                // identifier that it claims on the session bus
    std::optional<QuitAction> quitAction;
    std::optional<ports::RunningApplication> application;
    std::uint32_t judgedByWindow = 0;  // its newest window when it was matched
  };
  void windowsChanged();
  void meetWindowOwners();
  void activeWindowChanged();
  std::int32_t ownerOfActiveWindow() const;
  void meet(std::int32_t pid, Sign sign, const std::string& busID = {});
  void followSession();
  SessionWindows::PIDs processesOf(std::string_view appID) const;
  void followUnlisted();
  void judge(std::int32_t pid, Known& known);
  std::uint32_t newestWindowOf(std::int32_t pid) const;
  void identify(std::int32_t pid, Known& known, const std::vector<DesktopWindow>& windows);
  std::int32_t applicationAbove(std::int32_t pid, ProcessFamily::Kinship kinship) const;
  std::optional<PoliteQuit::Target> quitTarget(std::int32_t pid);
  std::optional<QuitAction> quitActionOf(const Known& application) const;
  PoliteQuit::Signals signalsTo(std::int32_t pid, const Known& known);
  bool mayHaveUnseenWindows(std::int32_t pid);
  const formats::DesktopEntry* entryRunning(std::string_view program) const;
  const formats::DesktopEntry* entryRunningIn(std::string_view folder) const;
  void setRecord(std::int32_t pid, Known& known, ports::RunningApplication record);
  void processEnded(std::int32_t pid);
  void entriesChanged();
  void changeSeen();
  void tell(ports::ApplicationEvent event, const ports::RunningApplication& application);
  std::vector<DesktopWindow> windowsOf(std::int32_t applicationPID) const;
  const Known* knownOwner(const DesktopWindow& window) const;

  Scheduler& scheduler_;
  DesktopEntryIndex entries_;
  SessionWindows windows_;
  ApplicationMatcher matcher_;  // declared after `entries_`, which it reads
  ProcessFamily family_;
  PoliteQuit politeQuit_;
  const std::uint64_t ownStart_;  // start of this program, in ticks of ProcessStart
  std::map<std::int32_t, Known> known_;
  std::vector<ports::RunningApplication> list_;
  bool listIsStale_ = true;
  std::int32_t frontmostPID_ = 0;
  std::map<ports::ApplicationEvent, SubscriberList<ports::RunningApplication>> events_;
  SubscriberList<> spaceChanges_;
  std::unique_ptr<TrayIconOwners> trayIcons_;
  EmbeddedIconOwners embeddedIcons_;
  std::unique_ptr<SessionApplications> session_;  // null outside of a Wayland session
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace vorli::linuxhost
