#include "linux/Workspace.h"

#include "base/UTF8.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace vorli::linuxhost {
namespace {

// Processes that stand between an application and what was started from it by hand.
bool endsFamily(std::int32_t pid, const std::string& executable) {
  const auto base = executable.substr(executable.rfind('/') + 1);
  return pid <= 1 || executable.empty() || base == "systemd" || base.starts_with("dbus-") ||
         base == "xfce4-session" || base == "gnome-session-binary" || base == "plasma_session";
}

// A folder that belongs to one program, not to the whole system.
std::string ownFolder(const std::string& executable) {
  auto folder = executable.substr(0, executable.rfind('/'));
  for (const std::string_view shared : {"/usr/bin", "/usr/sbin", "/bin", "/sbin", "/usr/local/bin",
                                        "/usr/games", "/usr/libexec", "/usr/lib", "/snap/bin"}) {
    if (folder == shared) return {};
  }
  return folder;
}

}  // namespace

Workspace::Workspace(Scheduler& scheduler, DesktopEntryIndex::Places places)
    : scheduler_(scheduler),
      entries_(scheduler, std::move(places)),
      matcher_(entries_),
      politeQuit_(windows_),
      ownStart_(readProcessStart(getpid()).value_or(ProcessStart{}).ticks) {
  entries_.setChangeHandler([this] { entriesChanged(); });
  meetWindowOwners();
  frontmostPID_ = ownerOfActiveWindow();
  windows_.setHandlers({.windowsChanged = [this] { windowsChanged(); },
                        .activeWindowChanged = [this] { activeWindowChanged(); },
                        .workspaceChanged = [this] { spaceChanges_.deliver(); }});
  trayIcons_ = std::make_unique<TrayIconOwners>([this](std::int32_t pid) { meet(pid, Showing::trayIcon); });
}

Workspace::~Workspace() = default;

const std::vector<ports::RunningApplication>& Workspace::runningApplications() {
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
  if (!windows_.canSeeWindows()) return std::nullopt;
  auto owners = windows_.ownersOfVisibleWindows();
  // A window of a helper process is the application's.
  for (std::size_t i = owners.size(); i-- > 0;) {
    const auto found = known_.find(owners[i]);
    if (found != known_.end() && found->second.applicationPID > 0)
      owners.push_back(found->second.applicationPID);
  }
  return owners;
}

bool Workspace::terminate(std::int32_t processIdentifier) {
  const auto found = known_.find(processIdentifier);
  if (found == known_.end() || !found->second.application) return false;
  return politeQuit_.ask(windowsOf(processIdentifier), *found->second.exit);
}

std::optional<ports::InstalledApplication> Workspace::applicationAt(std::string_view path) {
  const DesktopEntry* entry = entries_.byProgram(path);
  if (!entry) entry = entryRunning(path);
  if (!entry) entry = entries_.onlyOneInFolder(path);
  if (!entry) entry = entryRunningIn(path);
  if (!entry) return std::nullopt;
  return ports::InstalledApplication{SharedText(entry->id), SharedText(entry->name)};
}

// What an interpreter runs says whose a process is, the interpreter itself does not.
const DesktopEntry* Workspace::entryRunning(std::string_view program) const {
  if (isInterpreter(program)) return nullptr;
  for (const auto& [pid, known] : known_) {
    if (known.application && known.executable == program) return entries_.byID(known.entryID);
  }
  return nullptr;
}

// The only one whose running programs lie in this folder: what an entry starts may be a script elsewhere.
const DesktopEntry* Workspace::entryRunningIn(std::string_view folder) const {
  const std::string prefix = std::string(folder) + "/";
  const DesktopEntry* only = nullptr;
  for (const auto& [pid, known] : known_) {
    if (!known.application || !known.executable.starts_with(prefix) || isInterpreter(known.executable))
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
  activeWindowChanged();  // it may be one of the new windows, told before they were
}

void Workspace::meetWindowOwners() {
  for (const auto& window : windows_.windows()) {
    if (window.isNormal && window.pid > 0) meet(window.pid, Showing::window);
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

// Matched once for the process's life. What has no match is looked at again when it shows another window: a
// splash screen or an icon may say less than the window behind it.
void Workspace::meet(std::int32_t pid, Showing showing) {
  const auto [slot, isNew] = known_.try_emplace(pid);
  Known& known = slot->second;
  if (isNew) {
    known.exit = std::make_unique<ProcessExit>(pid, [this, pid] { processEnded(pid); });
    if (!known.exit->isHeld()) {
      known_.erase(slot);
      return;
    }
    known.executable = programFileOf(pid);
  } else if (known.application) {
    if (showing == Showing::window) showsWindow(known);
    return;
  } else if (known.applicationPID != 0) {
    return;
  }

  if (showing == Showing::window) known.showing = showing;
  if (isNew || newestWindowOf(pid) != known.judgedByWindow) judge(pid, known);
}

void Workspace::judge(std::int32_t pid, Known& known) {
  known.judgedByWindow = newestWindowOf(pid);
  std::vector<DesktopWindow> own;
  std::ranges::copy_if(windows_.windows(), std::back_inserter(own),
                       [pid](const DesktopWindow& window) { return window.pid == pid; });
  identify(pid, known, own);
}

// The list is in the order in which the windows came.
std::uint32_t Workspace::newestWindowOf(std::int32_t pid) const {
  std::uint32_t newest = 0;
  for (const auto& window : windows_.windows()) {
    if (window.pid == pid) newest = window.id;
  }
  return newest;
}

// One that had an icon only becomes a full application with its first window.
void Workspace::showsWindow(Known& known) {
  if (known.application->activationPolicy != ports::ActivationPolicy::accessory) return;
  const auto* entry = entries_.byID(known.entryID);
  if (!entry || !entry->isVisible()) return;
  known.application->activationPolicy = ports::ActivationPolicy::regular;
  changeSeen();
}

void Workspace::identify(std::int32_t pid, Known& known, const std::vector<DesktopWindow>& windows) {
  const DesktopEntry* entry = matcher_.match(pid, windows);
  const auto helped = applicationItHelps(pid, known.executable);
  const auto helpedEntry = helped > 0 ? known_.at(helped).entryID : std::string();
  if (helped > 0 && (!entry || entry->id == helpedEntry)) {
    known.applicationPID = helped;
    return;
  }
  if (!entry) return;
  const auto start = readProcessStart(pid);
  known.applicationPID = pid;
  known.entryID = entry->id;
  known.application = makeRecord(pid, *entry, start, known.showing);
  changeSeen();
  // One that ran before this program did is met now, not launched.
  if (start && start->ticks >= ownStart_) tell(ports::ApplicationEvent::launched, *known.application);
}

// The nearest ancestor that is an application and runs the same program, or one of the same folder of its
// own.
std::int32_t Workspace::applicationItHelps(std::int32_t pid, const std::string& executable) const {
  constexpr int deepestFamily = 32;
  auto ancestor = readProcessStart(pid).value_or(ProcessStart{}).parentPID;
  for (int depth = 0; depth < deepestFamily && ancestor > 1; ++depth) {
    const auto program = programFileOf(ancestor);
    if (endsFamily(ancestor, program)) return 0;
    const auto found = known_.find(ancestor);
    const bool isFamily = program == executable ||
                          (!ownFolder(executable).empty() && ownFolder(executable) == ownFolder(program));
    if (!isFamily) return 0;
    if (found != known_.end() && found->second.application) return ancestor;
    ancestor = readProcessStart(ancestor).value_or(ProcessStart{}).parentPID;
  }
  return 0;
}

ports::RunningApplication Workspace::makeRecord(std::int32_t pid, const DesktopEntry& entry,
                                                const std::optional<ProcessStart>& start,
                                                Showing showing) const {
  const bool isRegular = showing == Showing::window && entry.isVisible();
  return {
      .processIdentifier = pid,
      .localizedName = SharedText(entry.name),
      .bundleIdentifier = SharedText(entry.id),
      .bundleURL = SharedText(repairedUTF8(entry.path)),
      .activationPolicy = isRegular ? ports::ActivationPolicy::regular : ports::ActivationPolicy::accessory,
      .launchDate = start ? std::optional(start->startedAt) : std::nullopt,
      .icon = {SharedText(entry.icon)}};
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
  if (!ended.application) return;
  changeSeen();
  tell(ports::ApplicationEvent::terminated, *ended.application);
}

// A name or icon may have changed, and a program may have got its entry.
void Workspace::entriesChanged() {
  for (auto& [pid, known] : known_) {
    const auto* entry = known.application ? entries_.byID(known.entryID) : nullptr;
    if (!entry) continue;
    known.application->localizedName = SharedText(entry->name);
    known.application->icon = {SharedText(entry->icon)};
  }
  for (auto& [pid, known] : known_) {
    if (known.applicationPID == 0) judge(pid, known);
  }
  changeSeen();
  activeWindowChanged();
}

// The list stands until the main loop goes on, and nobody is called inside a call of this port.
void Workspace::tell(ports::ApplicationEvent event, const ports::RunningApplication& application) {
  scheduler_.post([this, alive = std::weak_ptr<bool>(alive_), event, application] {
    if (alive.lock()) events_[event].deliver(application);
  });
}

}  // namespace vorli::linuxhost
