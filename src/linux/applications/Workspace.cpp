#include "linux/applications/Workspace.h"

#include "linux/applications/ApplicationRecord.h"
#include "linux/applications/Interpreter.h"
#include "linux/applications/SessionType.h"
#include "linux/kernel/ProcessStart.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace vorli::linuxhost {
namespace {

// A sandbox's own view of the file tree, in which equal paths of two sandboxes are different files.
constexpr std::string_view sandboxTree = "/app/";

}  // namespace

Workspace::Workspace(Scheduler& scheduler, DesktopEntryIndex::Places places)
    : scheduler_(scheduler),
      entries_(scheduler, std::move(places)),
      windows_(scheduler, compositorSocket(), [this](std::string_view appID) { return processesOf(appID); }),
      matcher_(entries_),
      politeQuit_(windows_),
      ownStart_(readProcessStart(getpid()).value_or(ProcessStart{}).ticks),
      embeddedIcons_(scheduler, [this](std::int32_t pid) { meet(pid, Sign::trayIcon); }) {
  entries_.setChangeHandler([this] { entriesChanged(); });
  meetWindowOwners();
  frontmostPID_ = ownerOfActiveWindow();
  windows_.setHandlers({.windowsChanged = [this] { windowsChanged(); },
                        .activeWindowChanged = [this] { activeWindowChanged(); },
                        .workspaceChanged = [this] { spaceChanges_.deliver(); }});
  trayIcons_ = std::make_unique<TrayIconOwners>([this](std::int32_t pid) { meet(pid, Sign::trayIcon); });
  if (isWaylandSession()) followSession();
}

void Workspace::followSession() {
  const auto isApplication = [this](std::string_view id) {
    const auto* entry = entries_.byID(id);
    return entry && entry->isVisible();
  };
  const auto quitActionSeen = [this](std::int32_t pid, const QuitAction& action) {
    if (const auto found = known_.find(pid); found != known_.end()) found->second.quitAction = action;
  };
  session_ = std::make_unique<SessionApplications>(
      scheduler_, compositorSocket(),
      SessionApplications::Handlers{
          .isApplication = isApplication,
          .processSeen = [this](std::int32_t pid) { meet(pid, Sign::started); },
          .ownerSeen = [this](std::int32_t pid, const std::string& id) { meet(pid, Sign::started, id); },
          .quitActionSeen = quitActionSeen});
}

// Returns the processes to which a window with this identifier may belong: the applications that it names, or
// without one those that run its program, which several entries may start, and are no application yet.
SessionWindows::PIDs Workspace::processesOf(std::string_view appID) const {
  const DesktopWindow claim{.wmInstance = std::string(appID), .wmClass = std::string(appID)};
  const auto* entry = matcher_.byWindow(claim);
  SessionWindows::PIDs named, running;
  if (!entry) return named;
  const auto program = entries_.programOf(*entry);
  for (const auto& [pid, known] : known_) {
    if (known.application && known.entryID == entry->id) named.push_back(pid);
    const bool isNobodys = known.applicationPID == 0 && !program.empty();
    if (isNobodys && known.executable == program) running.push_back(pid);
  }
  return named.empty() ? running : named;
}

Workspace::~Workspace() = default;

const std::vector<ports::RunningApplication>& Workspace::runningApplications() {
  if (session_) session_->lookForClients();
  if (!listIsStale_) return list_;
  list_.clear();
  for (const auto& [pid, known] : known_) {
    if (known.application) list_.push_back(*known.application);
  }
  std::ranges::stable_sort(list_, [](const auto& a, const auto& b) { return a.launchDate < b.launchDate; });
  listIsStale_ = false;
  return list_;
}

std::optional<ports::RunningApplication> Workspace::frontmostApplication() {
  const auto found = known_.find(frontmostPID_);
  return found == known_.end() ? std::nullopt : found->second.application;
}

std::optional<std::vector<std::int32_t>> Workspace::onScreenWindowOwnerPIDs() {
  if (!seesEveryWindow()) return std::nullopt;
  auto visible = windows_.visibleWindows();
  if (!visible) return std::nullopt;
  auto& owners = visible->pids;
  // A window of a helper process also counts for its application.
  for (std::size_t i = owners.size(); i-- > 0;) {
    const auto found = known_.find(owners[i]);
    if (found != known_.end() && found->second.applicationPID > 0)
      owners.push_back(found->second.applicationPID);
  }
  // A window of an unknown program may belong to any application of which no window is known.
  for (const auto& [pid, known] : known_) {
    if (visible->hasStranger && known.application && windowsOf(pid).empty()) owners.push_back(pid);
  }
  return owners;
}

ports::QuitAnswer Workspace::terminate(std::int32_t processIdentifier) {
  const auto target = quitTarget(processIdentifier);
  return target ? politeQuit_.ask(*target) : ports::QuitAnswer::gone;
}

ports::QuitAnswer Workspace::answerToTerminate(std::int32_t processIdentifier) {
  const auto target = quitTarget(processIdentifier);
  return target ? PoliteQuit::answer(*target) : ports::QuitAnswer::gone;
}

std::optional<PoliteQuit::Target> Workspace::quitTarget(std::int32_t pid) {
  const auto found = known_.find(pid);
  if (found == known_.end() || !found->second.application) return std::nullopt;
  const Known& known = found->second;
  return PoliteQuit::Target{windowsOf(pid), quitActionOf(known), *known.exit, signalsTo(pid, known)};
}

// In a sandbox, the bus proxy owns the name. Its action quits the whole application, so it is not used if a
// window of that is seen: a part without windows must not end what is on the screen.
std::optional<QuitAction> Workspace::quitActionOf(const Known& application) const {
  if (application.quitAction || application.entryID.empty()) return application.quitAction;
  std::optional<QuitAction> ofProxy;
  for (const auto& [pid, known] : known_) {
    if (known.entryID == application.entryID && !windowsOf(pid).empty()) return std::nullopt;
    if (!known.application && known.busID == application.entryID) ofProxy = known.quitAction;
  }
  return ofProxy;
}

// Permits no signal where a window may be lost: a process without windows may be a part of an application
// whose windows belong to another process.
PoliteQuit::Signals Workspace::signalsTo(std::int32_t pid, const Known& known) {
  if (mayHaveUnseenWindows(pid)) return PoliteQuit::Signals::never;
  for (const auto& [other, twin] : known_) {
    const bool isTwin = other != pid && !known.entryID.empty() && twin.entryID == known.entryID;
    if (isTwin && (!windowsOf(other).empty() || mayHaveUnseenWindows(other)))
      return PoliteQuit::Signals::never;
  }
  return PoliteQuit::Signals::toWindowless;
}

// A client of the compositor may have windows. This program is a client too, so a list without it proves
// nothing. A sandbox may reach the compositor by a socket of its own.
bool Workspace::mayHaveUnseenWindows(std::int32_t pid) {
  if (!session_) return false;
  const auto clients = session_->clientsNow();
  if (!clients || session_->isClient(getpid()) != true || !matcher_.sandboxOf(pid).empty()) return true;
  const auto isOfApplication = [this, pid](std::int32_t client) {
    return client == pid || applicationHelpedBy(client) == pid;
  };
  return session_->isClient(pid).value_or(true) || std::ranges::any_of(*clients, isOfApplication);
}

std::optional<std::int32_t> Workspace::applicationHelpedBy(std::int32_t processIdentifier) {
  const auto known = known_.find(processIdentifier);
  if (known != known_.end() && known->second.application) return std::nullopt;
  if (known != known_.end() && known->second.applicationPID > 0) return known->second.applicationPID;
  const auto above = applicationAbove(processIdentifier, ProcessFamily::Kinship::engine);
  if (above > 0) return above;
  const auto sandbox = matcher_.sandboxOf(processIdentifier);
  for (const auto& [pid, application] : known_) {
    if (!sandbox.empty() && application.entryID == sandbox) return pid;
  }
  return std::nullopt;
}

std::optional<ports::InstalledApplication> Workspace::applicationAt(std::string_view path) {
  if (path.starts_with(sandboxTree)) return std::nullopt;
  const formats::DesktopEntry* entry = entries_.byProgram(path);
  if (!entry) entry = entryRunning(path);
  if (!entry) entry = entries_.onlyOneInFolder(path);
  if (!entry) entry = entryRunningIn(path);
  if (!entry) return std::nullopt;
  return ports::InstalledApplication{SharedText(entry->id), SharedText(entry->name)};
}

// Returns null for an interpreter, which does not identify an application.
const formats::DesktopEntry* Workspace::entryRunning(std::string_view program) const {
  if (isInterpreter(program)) return nullptr;
  for (const auto& [pid, known] : known_) {
    if (!known.entryID.empty() && known.executable == program) return entries_.byID(known.entryID);
  }
  return nullptr;
}

// The only entry whose running programs are in this folder. The entry itself may start a script elsewhere.
const formats::DesktopEntry* Workspace::entryRunningIn(std::string_view folder) const {
  const std::string prefix = std::string(folder) + "/";
  const formats::DesktopEntry* only = nullptr;
  for (const auto& [pid, known] : known_) {
    if (known.entryID.empty() || !known.executable.starts_with(prefix) || isInterpreter(known.executable))
      continue;
    const auto* entry = entries_.byID(known.entryID);
    if (only && entry != only) return nullptr;
    only = entry;
  }
  return only;
}

Subscription Workspace::subscribe(ports::ApplicationEvent event, ApplicationHandler handler) {
  return events_[event].add(std::move(handler));
}

Subscription Workspace::subscribeToSpaceChanges(std::function<void()> handler) {
  return spaceChanges_.add(std::move(handler));
}

void Workspace::windowsChanged() {
  meetWindowOwners();
  followUnlisted();
  if (session_) session_->lookForOwnerOf(windows_.newestAnonymous());
  activeWindowChanged();  // a new window may become active before the list shows it
}

void Workspace::meetWindowOwners() {
  for (const auto& window : windows_.windows()) {
    if (window.isNormal && window.pid > 0) meet(window.pid, Sign::window);
  }
}

void Workspace::activeWindowChanged() {
  const auto pid = ownerOfActiveWindow();
  if (pid == std::exchange(frontmostPID_, pid) || pid == 0) return;
  if (const auto application = frontmostApplication()) tell(ports::ApplicationEvent::activated, *application);
}

std::int32_t Workspace::ownerOfActiveWindow() const {
  const auto active = windows_.activeWindow();
  const Known* owner = active ? knownOwner(*active) : nullptr;
  return owner ? owner->applicationPID : 0;
}

const Workspace::Known* Workspace::knownOwner(const DesktopWindow& window) const {
  const auto found = known_.find(window.pid);
  return found == known_.end() ? nullptr : &found->second;
}

std::vector<DesktopWindow> Workspace::windowsOf(std::int32_t applicationPID) const {
  std::vector<DesktopWindow> own;
  for (const auto& window : windows_.windows()) {
    const Known* owner = knownOwner(window);
    if (window.isNormal && owner && owner->applicationPID == applicationPID) own.push_back(window);
  }
  return own;
}

std::optional<bool> Workspace::hasWindows(std::int32_t pid) {
  if (!seesEveryWindow()) return std::nullopt;
  const auto isOfProcess = [pid](const DesktopWindow& window) {
    return window.isNormal && window.pid == pid;
  };
  return std::ranges::any_of(windows_.windows(), isOfProcess) || !windowsOf(pid).empty();
}

// Matches a process when it is met and again with each new window, sign or program: an icon may reveal less
// than a window, a process may serve several entries, and a service manager's child becomes its program.
void Workspace::meet(std::int32_t pid, Sign sign, const std::string& busID) {
  const auto [slot, isNew] = known_.try_emplace(pid);
  Known& known = slot->second;
  if (isNew) {
    known.exit = std::make_unique<ProcessExit>(pid, [this, pid] { processEnded(pid); });
    if (!known.exit->isHeld()) {
      known_.erase(slot);
      return;
    }
  } else if (known.applicationPID != 0 && known.applicationPID != pid) {
    return;
  }
  const bool isNewSign = known.signs.insert(sign).second;
  if (!busID.empty()) known.busID = busID;
  const auto program = programFileOf(pid);  // empty for a process that is ending
  const bool isNewProgram = !program.empty() && std::exchange(known.executable, program) != program;
  const bool hasNewWindow = newestWindowOf(pid) != known.judgedByWindow;
  if (isNewSign || isNewProgram || hasNewWindow || !busID.empty()) judge(pid, known);
  if (isNew && !known.application) windows_.applicationsChanged();  // it may own one all the same
}

void Workspace::judge(std::int32_t pid, Known& known) {
  known.judgedByWindow = newestWindowOf(pid);
  std::vector<DesktopWindow> own;
  std::ranges::copy_if(windows_.windows(), std::back_inserter(own),
                       [pid](const DesktopWindow& window) { return window.pid == pid; });
  identify(pid, known, own);
}

// The list is in the order in which the windows appeared.
std::uint32_t Workspace::newestWindowOf(std::int32_t pid) const {
  std::uint32_t newest = 0;
  for (const auto& window : windows_.windows()) {
    if (window.pid == pid) newest = window.id;
  }
  return newest;
}

void Workspace::identify(std::int32_t pid, Known& known, const std::vector<DesktopWindow>& windows) {
  const formats::DesktopEntry* entry = matcher_.match(pid, windows, known.busID);
  if (!entry) entry = entries_.byID(known.entryID);
  if (!known.application) {
    const auto helped = applicationAbove(pid, ProcessFamily::Kinship::script);
    if (helped > 0 && (!entry || entry->id == known_.at(helped).entryID)) {
      known.applicationPID = helped;
      return;
    }
  }
  const bool hasOnlyStarted = known.signs == std::set{Sign::started};
  if (entry && (entry->isVisible() || !hasOnlyStarted)) {
    auto record = recordOf(*entry);
    const bool hasOnlyAnIcon = known.signs == std::set{Sign::trayIcon};
    if (hasOnlyAnIcon || !entry->isVisible()) record.activationPolicy = ports::ActivationPolicy::accessory;
    known.entryID = entry->id;
    setRecord(pid, known, std::move(record));
  } else if (!entry && known.entryID.empty() && pid != getpid()) {
    if (auto unlisted = recordOf(windows)) setRecord(pid, known, std::move(*unlisted));
  }
}

void Workspace::changeSeen() {
  listIsStale_ = true;
  windows_.applicationsChanged();
}

void Workspace::setRecord(std::int32_t pid, Known& known, ports::RunningApplication record) {
  const auto start = readProcessStart(pid);
  record.processIdentifier = pid;
  if (start) record.launchDate = start->startedAt;
  if (known.application == record) return;
  const bool isAnother = !known.application || known.application->bundleIdentifier != record.bundleIdentifier;
  known.applicationPID = pid;
  known.application = std::move(record);
  changeSeen();
  // An application that was already running when this program started was not launched now.
  if (isAnother && start && start->ticks >= ownStart_) {
    tell(ports::ApplicationEvent::launched, *known.application);
  }
}

// A program without an entry that has closed its windows may still be working in the background. It is then
// not regular, so that it is never quit as a hidden application.
void Workspace::followUnlisted() {
  for (auto& [pid, known] : known_) {
    if (!known.application || !known.entryID.empty()) continue;
    const auto policy =
        windowsOf(pid).empty() ? ports::ActivationPolicy::accessory : ports::ActivationPolicy::regular;
    if (std::exchange(known.application->activationPolicy, policy) != policy) changeSeen();
  }
}

std::int32_t Workspace::applicationAbove(std::int32_t pid, ProcessFamily::Kinship kinship) const {
  return family_.nearestApplication(pid, kinship, [this](std::int32_t ancestor) {
    const auto found = known_.find(ancestor);
    return found != known_.end() && found->second.application;
  });
}

void Workspace::processEnded(std::int32_t pid) {
  const auto found = known_.find(pid);
  if (found == known_.end()) return;
  const Known ended = std::move(found->second);
  known_.erase(found);
  for (auto& [other, known] : known_) {
    if (known.applicationPID == pid) known.applicationPID = known.judgedByWindow = 0;
  }
  if (frontmostPID_ == pid) frontmostPID_ = 0;
  if (!ended.application) return windows_.applicationsChanged();
  changeSeen();
  tell(ports::ApplicationEvent::terminated, *ended.application);
}

// A name or icon may have changed, and a program may have gained an entry.
void Workspace::entriesChanged() {
  for (auto& [pid, known] : known_) {
    const auto* entry = known.application ? entries_.byID(known.entryID) : nullptr;
    if (!entry) continue;
    known.application->localizedName = SharedText(entry->name);
    known.application->icon = {SharedText(entry->icon)};
  }
  for (auto& [pid, known] : known_) {
    const bool isUnlisted = known.application && known.entryID.empty();
    if (known.applicationPID == 0 || isUnlisted) judge(pid, known);
  }
  changeSeen();
  activeWindowChanged();
}

// Delivers the event in a later turn of the main loop: within a turn the list must not change, and no handler
// may run inside a call of this port.
void Workspace::tell(ports::ApplicationEvent event, const ports::RunningApplication& application) {
  scheduler_.post([this, alive = std::weak_ptr<bool>(alive_), event, application] {
    if (alive.lock()) events_[event].deliver(application);
  });
}

}  // namespace vorli::linuxhost
