#pragma once

#include "base/Scheduler.h"
#include "linux/applications/WaylandConnection.h"
#include "linux/applications/WindowProtocol.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct wl_callback;

namespace vorli::linuxhost {

/// The windows of a Wayland session, where its compositor describes them to other programs. Follows it by
/// events. Main thread.
class NativeWindows {
 public:
  /// The first identifier of a window, far above those of an X server.
  static constexpr std::uint32_t firstID = 0x8000'0000;

  /// Calls `changed` from the main loop when the functions below return something new. `socket` is the path
  /// at which the compositor listens.
  NativeWindows(Scheduler& scheduler, std::string socket, std::function<void()> changed);
  ~NativeWindows();
  NativeWindows(const NativeWindows&) = delete;
  NativeWindows& operator=(const NativeWindows&) = delete;

  /// True once the compositor has described all its windows; false where it does not, and while the
  /// connection is lost.
  bool canSeeWindows() const { return protocol_ && !protocol_->hasEnded() && answers_ == neededAnswers; }
  /// Empty while `canSeeWindows` is false. Includes windows on other workspaces, which look like all others.
  const std::vector<NativeWindow>& windows() const { return windows_; }
  /// True while the user has put all windows aside to look at the desktop, where the compositor reports it.
  bool isShowingDesktop() const { return protocol_ && protocol_->isShowingDesktop(); }
  /// Asks a window to close, as its close button does. The application may ask the user first.
  void requestClose(std::uint32_t id);

 private:
  // The first answer follows the announcements of all windows, the second their descriptions.
  static constexpr int neededAnswers = 2;

  void globalSeen(wl_registry* registry, std::uint32_t name, std::string_view interface,
                  std::uint32_t version);
  void askForAnswer();
  void answered();
  void connectionLost();
  void update();

  const std::function<void()> changed_;
  std::uint32_t lastID_ = firstID - 1;
  bool couldSeeWindows_ = false;
  std::vector<NativeWindow> windows_;
  WaylandConnection connection_;
  // Declared after `connection_`, which owns these objects.
  wl_callback* answer_ = nullptr;
  int answers_ = 0;
  std::unique_ptr<WindowProtocol> protocol_;
};

}  // namespace vorli::linuxhost
