#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QSocketNotifier;
struct xcb_connection_t;

namespace vorli::linuxhost {

/// One top-level window that the window manager knows.
struct DesktopWindow {
  std::uint32_t id = 0;
  std::int32_t pid = 0;  // 0: on another machine, or unknown
  std::string gtkApplicationID = {};
  std::string gtkUniqueBusName = {};  // bus name at which a GTK application exports its actions
  std::string gtkApplicationObjectPath = {};
  std::string kdeDesktopFile = {};
  std::string wmInstance = {};
  std::string wmClass = {};
  bool isNormal = true;  // not a dock or panel, and not the desktop itself

  bool operator==(const DesktopWindow&) const = default;
};

/// The X server's windows, followed by events and never by polling. Main thread; a change costs one pipelined
/// round trip to the server for the new windows.
class WindowList {
 public:
  /// Connects to `display`, or to the display of the environment when it is null.
  explicit WindowList(const char* display = nullptr);
  ~WindowList();
  WindowList(const WindowList&) = delete;
  WindowList& operator=(const WindowList&) = delete;

  /// False without an X server, or with one whose window manager keeps no list of windows.
  bool canSeeWindows() const;

  const std::vector<DesktopWindow>& windows() const { return windows_; }
  /// Empty when no window of an application has the focus.
  std::optional<DesktopWindow> activeWindow() const;

  /// Processes with a window that the user can see now: mapped or rolled up into its title bar, not
  /// minimised, and on this workspace. Empty while the window manager shows the desktop instead of the
  /// windows. Takes one round trip.
  std::optional<std::vector<std::int32_t>> ownersOfVisibleWindows();

  /// Asks a window to close, as its close button does: through the window manager, or directly where that
  /// does not take such requests. The application may ask the user first.
  void requestClose(std::uint32_t window);

  struct Handlers {
    std::function<void()> windowsChanged;
    std::function<void()> activeWindowChanged;
    std::function<void()> workspaceChanged;
  };
  void setHandlers(Handlers handlers) { handlers_ = std::move(handlers); }

 private:
  struct Atoms;

  void readEvents();
  void readEventsLater();
  void readClientList();
  void readActiveWindow();
  void readCurrentDesktop();
  void readSupported();
  void connectionLost();
  std::vector<DesktopWindow> describe(const std::vector<std::uint32_t>& ids);

  xcb_connection_t* connection_ = nullptr;
  std::uint32_t root_ = 0;
  std::unique_ptr<Atoms> atoms_;
  std::unique_ptr<QSocketNotifier> notifier_;
  std::vector<DesktopWindow> windows_;
  std::uint32_t active_ = 0;
  std::uint32_t currentDesktop_ = 0;
  bool hasClientList_ = false;
  bool managerClosesWindows_ = false;
  Handlers handlers_;
};

}  // namespace vorli::linuxhost
