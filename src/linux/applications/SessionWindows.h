#pragma once

#include "base/Scheduler.h"
#include "linux/applications/NativeWindows.h"
#include "linux/applications/WindowList.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::linuxhost {

/// All windows of the session that are visible to this program: those of the X server and, in a Wayland
/// session, those that the compositor describes. A window in both lists counts once. Main thread.
class SessionWindows {
 public:
  using PIDs = std::vector<std::int32_t>;
  using Handlers = WindowList::Handlers;

  /// Processes that a window with this application identifier may belong to, for a compositor that does not
  /// report the processes of its windows.
  using OwnersOf = std::function<PIDs(std::string_view appID)>;

  /// `compositorSocket` is empty outside of a Wayland session.
  SessionWindows(Scheduler& scheduler, const std::string& compositorSocket, OwnersOf ownersOf);

  /// Handlers are called from the main loop.
  void setHandlers(Handlers handlers);

  /// False when windows are missing from the list, or the desktop keeps no list.
  bool seesEveryWindow() const;
  /// The windows of a program whose process is not known for certain have no process.
  const std::vector<DesktopWindow>& windows() const { return native_ ? windows_ : x11_.windows(); }
  /// Empty when no window of an application has the focus, and where `seesEveryWindow` is false.
  std::optional<DesktopWindow> activeWindow() const;
  /// Identifier of the newest window of which the compositor does not say whose it is; 0 without one.
  std::uint32_t newestAnonymous() const;

  /// Windows that the user can see now. `pids`: processes that own one, or may own one. `hasStranger`: the
  /// program of one could not be found.
  struct Visible {
    PIDs pids;
    bool hasStranger = false;
  };
  /// Empty while the desktop is shown instead of the windows. Takes one round trip to the X server.
  std::optional<Visible> visibleWindows();

  /// Asks a window to close, as its close button does. The application may ask the user first.
  void requestClose(std::uint32_t window);

  /// Finds the processes of the windows again in a later turn of the main loop, because the answers of
  /// `ownersOf` have changed.
  void applicationsChanged();

 private:
  void nativeChanged();
  void merge();
  std::vector<NativeWindow> nativeOnly() const;
  std::int32_t processOf(const NativeWindow& window) const;

  Scheduler& scheduler_;
  const OwnersOf ownersOf_;
  Handlers handlers_;
  WindowList x11_;
  std::unique_ptr<NativeWindows> native_;  // null outside of a Wayland session
  std::vector<DesktopWindow> windows_;     // in a Wayland session: the X server's first
  std::uint32_t active_ = 0;               // in a Wayland session
  std::shared_ptr<bool> mergesSoon_ = std::make_shared<bool>(false);
};

}  // namespace vorli::linuxhost
