#include "linux/applications/SessionWindows.h"

#include <algorithm>
#include <map>
#include <utility>

namespace vorli::linuxhost {

SessionWindows::SessionWindows(Scheduler& scheduler, const std::string& compositorSocket, OwnersOf ownersOf)
    : scheduler_(scheduler), ownersOf_(std::move(ownersOf)) {
  if (compositorSocket.empty()) return;
  native_ = std::make_unique<NativeWindows>(scheduler, compositorSocket, [this] { nativeChanged(); });
  merge();
}

void SessionWindows::setHandlers(Handlers handlers) {
  handlers_ = std::move(handlers);
  x11_.setHandlers({.windowsChanged =
                        [this] {
                          merge();
                          handlers_.windowsChanged();
                        },
                    .activeWindowChanged =
                        [this] {
                          merge();
                          handlers_.activeWindowChanged();
                        },
                    .workspaceChanged = [this] { handlers_.workspaceChanged(); }});
}

void SessionWindows::nativeChanged() {
  merge();
  if (handlers_.windowsChanged) handlers_.windowsChanged();
}

bool SessionWindows::seesEveryWindow() const {
  return native_ ? native_->canSeeWindows() : x11_.canSeeWindows();
}

// Leaves out the windows of X11 programs, which a compositor lists as well, under their class.
std::vector<NativeWindow> SessionWindows::nativeOnly() const {
  std::map<std::string, int> classes;
  std::map<std::int32_t, int> processes;
  for (const auto& window : x11_.windows()) {
    ++classes[window.wmClass];
    ++processes[window.pid];
  }
  std::vector<NativeWindow> native;
  for (const auto& window : native_->windows()) {
    auto& seen = window.pid > 0 ? processes[window.pid] : classes[window.appID];
    if (seen > 0) {
      --seen;
    } else {
      native.push_back(window);
    }
  }
  return native;
}

std::int32_t SessionWindows::processOf(const NativeWindow& window) const {
  if (window.pid > 0) return window.pid;
  const auto owners = ownersOf_(window.appID);
  return owners.size() == 1 ? owners.front() : 0;
}

void SessionWindows::merge() {
  if (!native_) return;
  windows_ = x11_.windows();
  const auto x11Active = x11_.activeWindow();
  active_ = x11Active ? x11Active->id : 0;
  for (const auto& window : nativeOnly()) {
    if (window.isActive) active_ = window.id;
    windows_.push_back({.id = window.id,
                        .pid = processOf(window),
                        .wmInstance = window.appID,
                        .wmClass = window.appID,
                        .isNormal = window.isNormal});
  }
}

std::uint32_t SessionWindows::newestAnonymous() const {
  std::uint32_t newest = 0;
  if (!native_) return newest;
  for (const auto& window : native_->windows()) {
    if (window.pid == 0) newest = std::max(newest, window.id);
  }
  return newest;
}

std::optional<DesktopWindow> SessionWindows::activeWindow() const {
  if (!seesEveryWindow()) return std::nullopt;
  if (!native_) return x11_.activeWindow();
  const auto found = std::ranges::find(windows_, active_, &DesktopWindow::id);
  return found == windows_.end() ? std::nullopt : std::optional(*found);
}

std::optional<SessionWindows::Visible> SessionWindows::visibleWindows() {
  auto owners = x11_.ownersOfVisibleWindows();
  if (!owners || (native_ && native_->isShowingDesktop())) return std::nullopt;
  Visible visible{std::move(*owners)};
  if (!native_) return visible;
  for (const auto& window : nativeOnly()) {
    if (window.isMinimised || !window.isNormal) continue;
    const auto candidates = window.pid > 0 ? PIDs{window.pid} : ownersOf_(window.appID);
    visible.hasStranger = visible.hasStranger || candidates.empty();
    visible.pids.insert(visible.pids.end(), candidates.begin(), candidates.end());
  }
  return visible;
}

void SessionWindows::requestClose(std::uint32_t window) {
  if (native_ && window >= NativeWindows::firstID) {
    native_->requestClose(window);
  } else {
    x11_.requestClose(window);
  }
}

void SessionWindows::applicationsChanged() {
  if (!native_ || std::exchange(*mergesSoon_, true)) return;
  scheduler_.post([this, pending = std::weak_ptr<bool>(mergesSoon_)] {
    const auto alive = pending.lock();
    if (!alive) return;
    *alive = false;
    const auto before = windows_;
    merge();
    if (windows_ != before && handlers_.windowsChanged) handlers_.windowsChanged();
  });
}

}  // namespace vorli::linuxhost
