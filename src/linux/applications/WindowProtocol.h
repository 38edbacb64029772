#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct wl_interface;
struct wl_message;
struct wl_proxy;
struct wl_registry;
union wl_argument;

namespace vorli::linuxhost {

/// A window as the compositor describes it.
struct NativeWindow {
  std::uint32_t id = 0;
  std::int32_t pid = 0;  // 0 where the compositor does not report it
  std::string appID;
  bool isActive = false;
  bool isMinimised = false;
  bool isNormal = true;  // listed in task bars

  bool operator==(const NativeWindow&) const = default;
};

/// The windows that one protocol of a compositor describes. Main thread.
class WindowProtocol {
 public:
  virtual ~WindowProtocol();
  WindowProtocol(const WindowProtocol&) = delete;
  WindowProtocol& operator=(const WindowProtocol&) = delete;

  /// The windows whose description is complete, in the order in which they were announced.
  std::vector<NativeWindow> windows() const;
  /// True once the compositor has announced that it will describe no more windows.
  bool hasEnded() const { return hasEnded_; }
  bool isShowingDesktop() const { return isShowingDesktop_; }
  /// Asks a window to close, as its close button does; the request is sent when the connection is flushed.
  void requestClose(std::uint32_t id);

 protected:
  struct Toplevel {
    NativeWindow window;
    bool isComplete = false;
  };
  struct Global {
    wl_registry* registry;
    std::uint32_t name;
    std::uint32_t version;
  };

  /// Numbers of the requests to a window.
  struct Requests {
    std::uint32_t close;
    std::uint32_t destroy;
  };

  /// Binds the protocol's manager. `lastID` is the identifier of the newest window, including those of
  /// earlier connections.
  WindowProtocol(const Global& global, const wl_interface& manager, const Requests& requests,
                 std::uint32_t& lastID);

  virtual void managerEvent(std::uint32_t event, const wl_argument* arguments) = 0;
  virtual void windowEvent(wl_proxy* proxy, Toplevel& toplevel, std::uint32_t event,
                           const wl_argument* arguments) = 0;

  wl_proxy* manager() const { return manager_; }
  void add(wl_proxy* window);
  /// Forgets a closed window and destroys its object.
  void remove(wl_proxy* window);
  /// Forgets all windows; there will be no new ones.
  void end();
  void setShowingDesktop(bool isShowing) { isShowingDesktop_ = isShowing; }

 private:
  static int dispatch(const void*, void* target, std::uint32_t event, const wl_message*,
                      wl_argument* arguments);

  const Requests requests_;
  std::uint32_t& lastID_;
  wl_proxy* manager_;
  std::map<wl_proxy*, Toplevel> toplevels_;
  bool isShowingDesktop_ = false;
  bool hasEnded_ = false;
};

}  // namespace vorli::linuxhost
